#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "platform/files.h"

namespace quarnel {

// Answers the program's test of existence for many paths. A folder that is asked about is listed
// once, and its names then answer in any letter case; a name that is found is confirmed by the file
// itself. What appears in a listed folder later is not seen, so an index
// lives no longer than one phase of a scan.
class FolderIndex {
 public:
  explicit FolderIndex(Files& files) : files_(files) {}

  // The same answer as FileExists.
  bool FileExists(std::string_view path);

 private:
  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const;
  };
  struct TextEqual {
    using is_transparent = void;
    bool operator()(std::string_view left, std::string_view right) const;
  };
  using Names = std::unordered_set<std::string, TextHash, TextEqual>;
  struct Folder {
    std::optional<Names> names;  // once it is listed
  };

  Folder& FolderOf(std::string_view path);
  void ListNames(std::string_view folder, Names& names);

  Files& files_;
  std::unordered_map<std::string, Folder, TextHash, TextEqual> folders_;
  // Signatures come in runs of one folder.
  std::string lastPath_;
  Folder* last_ = nullptr;
};

}  // namespace quarnel
