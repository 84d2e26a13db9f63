#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/machine.h"

namespace quarnel {

// What a scan could not read. It is no find, and it is not known to be clean either.
struct UnreadItem {
  std::string kind;  // "file", "folder", "registry key", "process"
  std::string name;
};

class Unread {
 public:
  void Add(std::string_view kind, std::string_view name) {
    // A machine that refuses everything must not fill the memory.
    if (items_.size() < kMostNamed) items_.push_back({std::string(kind), std::string(name)});
    ++count_;
  }
  // The same for items that are not named.
  void AddUnnamed(size_t count) { count_ += count; }
  void Clear() {
    items_.clear();
    count_ = 0;
  }
  size_t Count() const { return count_; }
  // The first ones by name.
  const std::vector<UnreadItem>& Items() const { return items_; }

 private:
  static constexpr size_t kMostNamed = 10000;
  std::vector<UnreadItem> items_;
  size_t count_ = 0;
};

// What the last scan could not read, kept in the program's folder for a later report: the file that
// is to be saved. Loading gives nothing when there is no whole file.
WholeFile UnreadFile(Machine& machine, const Unread& unread);
std::optional<Unread> LoadUnread(Files& files, Machine& machine);

}  // namespace quarnel
