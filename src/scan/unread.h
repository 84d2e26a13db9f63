#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/files.h"
#include "platform/machine.h"

namespace quarnel {

// What a scan could not read. It is no find, and it is not known to be clean either.
struct UnreadItem {
  std::string kind;  // "file", "folder", "link", "registry key", "process", "drive"
  std::string name;

  bool operator==(const UnreadItem&) const = default;
};

// The kind whose items leave a scan without a result.
inline constexpr std::string_view kUnreadRegistryKey = "registry key";

// What a scan can say nothing about, and what it could not keep.
class Unread {
 public:
  // Each is named once.
  void Add(std::string_view kind, std::string_view name);
  // The same for items that are not named.
  void AddUnnamed(size_t count) { count_ += count; }
  // A phase that was asked for and did not run to its end: "Registry", and why.
  void AddNotRun(std::string_view phase, std::string_view reason);
  // The registry could not be read or written.
  void AddBrokenRegistry(std::string_view what) { Add(kUnreadRegistryKey, what); }
  // A record of the scan that could not be saved.
  void AddNotSaved(std::string_view what, std::string_view reason);
  // The user ended it, and what would have come was not scanned.
  void SetStopped() { stopped_ = true; }
  // How the scan ended, "Scanning completed."; empty when none has.
  void SetOutcome(std::string_view outcome) { outcome_ = outcome; }
  const std::string& Outcome() const { return outcome_; }
  void Clear() { *this = {}; }

  size_t Count() const { return count_; }
  // The first ones by name.
  const std::vector<UnreadItem>& Items() const { return items_; }
  // "Registry: QNLRSig.dll, line 7: Subscript out of range".
  const std::vector<std::string>& NotRun() const { return notRun_; }
  const std::vector<std::string>& NotSaved() const { return notSaved_; }
  // Whether every phase ran to its end, which no user brought about early, and the registry could
  // be used: all that was asked for was scanned, but for the files, folders and programs named
  // here.
  bool ScanWasWhole() const { return notRun_.empty() && !registryBroken_ && !stopped_; }

  // As lines for a person, at most so many.
  std::string Text(size_t most) const;

 private:
  friend std::optional<Unread> ReadUnread(std::string_view text);
  friend WholeFile UnreadFile(Machine& machine, const Unread& unread);

  // A machine that refuses everything must not fill the memory.
  static constexpr size_t kMostNamed = 10000;
  std::vector<UnreadItem> items_;
  std::unordered_set<std::string> named_;  // folded
  size_t count_ = 0;
  std::vector<std::string> notRun_;
  std::vector<std::string> notSaved_;
  bool registryBroken_ = false;
  bool stopped_ = false;
  std::string outcome_;
};

// What the last scan could not read, kept in the program's folder for later runs: the file that is
// to be saved. Loading gives an empty one when there is no file, and one that is not whole when the
// file cannot be read.
WholeFile UnreadFile(Machine& machine, const Unread& unread);
Unread LoadUnread(Files& files, Machine& machine);

}  // namespace quarnel
