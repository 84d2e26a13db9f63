#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel {

// What happens to a child's system calls that change something on the disk, or to those that look
// at something there.
struct Intervention {
  enum class Kind {
    kNone,
    kKill,          // the child is killed at the call, which is not done
    kTear,          // the child is killed when half of the bytes are written, or the call is done
    kFail,          // the call fails
    kFailFromThen,  // that and every further one
  };
  Kind kind = Kind::kNone;
  size_t at = 0;  // the call, counted from 1
  int error = 0;  // errno of a failing call
  // Of reading, opening, listing and looking, and not of writing.
  bool ofLooks = false;
};

struct TracedRun {
  size_t calls = 0;   // writing calls that were counted
  int exitCode = -1;  // -1 when the child did not end by itself
  int signal = 0;     // what killed it
  std::string place;  // the call of the intervention: its name and what it is about
  std::string output;

  bool Crashed() const { return signal != 0; }
};

// Whether this system lets one process steer another's calls. The reason when it does not.
std::string WhyNoTracing();

// Runs `program` in a child, whose exit code it gives, and counts the writing calls of all its
// threads; those before the first one about a path with `from` in it do not count, and of looks
// only those at such a path. Its standard
// output is kept, its standard error is lost, and writing to either is no counted call.
TracedRun RunTraced(const std::function<int()>& program, const Intervention& intervention,
                    std::string_view from = {});

// Becomes a program with the text as its standard input. Returns only when that failed.
int BecomeProgram(const std::vector<std::string>& words, const std::string& input);

// What a root becomes from here on is stopped by the permissions of files as any other user is.
void HeedPermissions();

// Makes a folder an exact copy of another one, with attributes and times.
void CopyFolder(const std::string& from, const std::string& to);

}  // namespace quarnel
