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
#include "platform/held_folders.h"
#include "platform/names.h"

namespace quarnel {

// What a file has beside its bytes and its name.
struct FileDress {
  uint32_t attributes = 0;
  FileTimes times;
};

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
    std::optional<FileDress> dress;  // without one the system gives it what a new file has
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

  // Reads a file that stands at a path.
  std::unique_ptr<File> Open(const std::string& path);
  // Gives a file that stands at a path its attributes and times.
  void Dress(const std::string& path, const FileDress& dress);

  // Writes a file that is to be made or replaced, with all folders on the way. Raises RuntimeError
  // when that fails, with nothing left behind; what happens later is told through the item.
  void Put(Item item);

  // Gives all files that were written their names.
  void Settle();

 private:
  struct Written {
    Item item;
    HeldFolder* folder = nullptr;
    std::string name;
    std::string temporary;
  };

  HeldFolders& Folders();
  HeldFolder& FolderOf(const std::string& path);
  static void Place(const Written& file);
  void FinishAll(const std::vector<Written>& files);

  Files& files_;
  std::unique_ptr<HeldFolders> folders_;  // those of written_, and those that were looked into
  std::vector<Written> written_;
  std::set<std::string, LessNames> taken_;  // the paths of their temporary names
  uint64_t bytes_ = 0;
};

// Raises kBadFileName for a path that may not be restored to: one that does not lie below `root`,
// or that names a device, a stream, or another folder by "..".
void RequireBelow(std::string_view root, std::string_view path);

// Raises when what stands at a path is not its file: a folder, or, where names may differ in letter
// case alone, another file.
void RequireSameFile(const DirectoryEntry& present, std::string_view path);

}  // namespace quarnel
