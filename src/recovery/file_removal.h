#pragma once

#include <string>
#include <string_view>

#include "controls/host.h"
#include "core/error_log.h"
#include "core/settings.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "platform/processes.h"

namespace quarnel {

// What happened to a file on its way out.
struct FileOutcome {
  std::string quarantine;  // where it lies now, when it was moved there
  std::string obstacle;    // why nothing was done, or what failed last; empty when nothing did
  bool refused = false;    // its path is not safe to act on, so nothing was tried
};

// Stops, deletes and quarantines single files. No folder is entered by way of a link: a file behind
// one is refused.
class FileRemoval {
 public:
  struct Uses {
    Files& files;
    Processes& processes;
    Machine& machine;
    const Settings& settings;
    Host& host;
    ErrorLog& log;
  };
  explicit FileRemoval(const Uses& uses) : u_(uses), files_(uses.files.WithoutLinks()) {}

  // Deletes the file in the way of its extension (as GetFileExtension gives it): a program is ended
  // first. True when the way reports the file deleted; after anything else it is to be quarantined.
  // A file that is refused counts as deleted, and the refusal is logged.
  bool DeleteByExtension(std::string_view path, FileOutcome& outcome);

  // Ends the first process of this base name; 15 characters without extension are compared. False
  // when it still runs after some tries. Without such a process there is nothing to end.
  bool StopThisProcess(std::string_view exeName);

  // 0 after an attempt to delete or without a backslash, -1 when no such file is listed, 2 when its
  // process could not be ended.
  int StopAndKillSpyExe(std::string_view path);
  // 1 when the file was deleted.
  int UnregisterAndDeleteDLLAndOCX(std::string_view path);
  // True when the file was there to be deleted, whether or not it went away.
  bool DeleteSpywareFile(std::string_view path);

  // Moves a file to the quarantine, under the decimal codes of its name's characters. A name that
  // is taken there is a failure; in strict mode the name gets a suffix.
  void MoveThisFile(std::string_view path, FileOutcome& outcome);

 private:
  // Why nothing may be done at the path; empty when it may.
  std::string WhyRefused(std::string_view path);
  // The name of what stands at the path; empty when nothing does.
  std::string NameAt(std::string_view path);
  // Whether a directory search gives the path's own name, letter case folded.
  bool IsListed(std::string_view path);
  void Delete(std::string_view path);
  std::string QuarantineName(std::string_view path);

  Uses u_;
  Files& files_;
  std::string lastFailure_;
  // What DeleteByExtension was last told to delete, and the name that stood there.
  struct Handled {
    std::string path;
    std::string name;
  } handled_;
};

// The name under which a file lies in the quarantine: the decimal codes of its characters.
std::string QuarantinedName(std::string_view baseName);

}  // namespace quarnel
