#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/runtime_error.h"
#include "platform/files.h"

namespace quarnel {

// Puts files back. No folder is entered by way of a link, and a file appears under its name only
// when it is complete and on the disk. Since a wait for the disk costs about the same for one file
// as for many, files are written under temporary names first, and a batch of them gets its names at
// once.
class FileRestorer {
 public:
  using Pieces = std::function<void(std::string_view piece)>;

  struct Item {
    std::string path;
    // Hands the file's bytes to its argument, piece by piece; what it raises leaves nothing behind.
    std::function<void(const Pieces& take)> source;
    // Gives the finished file its times and attributes, before it gets its name; may be empty.
    std::function<void(const std::string& temporary)> finish;
    // The file has its name.
    std::function<void()> placed;
    // The file could not be given its name, or `placed` raised this.
    std::function<void(const RuntimeError& error)> failed;
  };

  explicit FileRestorer(Files& files) : files_(files.WithoutLinks()) {}
  // What was not settled is taken away again.
  ~FileRestorer();
  FileRestorer(const FileRestorer&) = delete;
  FileRestorer& operator=(const FileRestorer&) = delete;

  // What stands at a path, counting what is only written yet.
  std::optional<DirectoryEntry> Stat(const std::string& path);

  // Writes a file that is to be made or replaced, with all folders on the way. Raises RuntimeError
  // when that fails; what happens later is told through the item.
  void Put(Item item);

  // Gives all files that were written their names.
  void Settle();

  Files& files() { return files_; }

 private:
  void Place(const Item& item, const std::string& temporary);

  Files& files_;
  std::vector<Item> written_;
  std::vector<std::string> temporaries_;  // of written_, in the same order
  std::set<std::string> taken_;           // the same names
  std::string folder_;                    // of the last file, which stands
  uint64_t bytes_ = 0;
};

// Raises kBadFileName for a path that may not be restored to: one that does not lie below `root`,
// or that names a device, a stream, or another folder by "..".
void RequireBelow(std::string_view root, std::string_view path);

}  // namespace quarnel
