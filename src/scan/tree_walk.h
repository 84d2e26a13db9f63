#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "scan/unread.h"

namespace quarnel {

// The entries below a folder, one at a time: all of a folder's own before anything of its
// sub-folders, which follow in the order found. Links are given and not entered, so the walk ends.
// A folder that cannot be listed counts as empty; it and each link to a folder is noted as unread.
class TreeWalk {
 public:
  struct Entry {
    std::shared_ptr<const std::string> folder;  // with a backslash at its end
    DirectoryEntry found;

    std::string Path() const { return *folder + found.name; }
  };

  TreeWalk(Files& files, Unread& unread, std::string_view root);

  // The next entry; nothing behind the last.
  std::optional<Entry> Next();

 private:
  void Enter(std::string folder);

  Files& files_;
  Unread& unread_;
  std::shared_ptr<const std::string> folder_;  // whose entries are being given
  std::vector<DirectoryEntry> entries_;        // of that folder
  size_t next_ = 0;                            // the next of them
  std::vector<std::string> toEnter_;           // folders to come, the next one last
};

}  // namespace quarnel
