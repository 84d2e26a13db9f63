#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace quarnel {

// Walks a folder tree and reports folders and files by events: all files of a folder come before
// anything of its sub-folders. Listings are snapshots, so events processed in a handler cannot
// disturb the walk.
class CDirDrill {
 public:
  explicit CDirDrill(Files& files) : files_(files) {}

  // `cancel` set by a handler ends the walk.
  std::function<void(bool& cancel, const std::string& path)> NewFile;
  std::function<void(bool& cancel, const std::string& path)> NewFolder;
  std::function<void(long folders, long files)> Done;

  bool FolderType() const { return folderType_; }
  void SetFolderType(bool folderType) { folderType_ = folderType; }
  const std::string& Folder() const { return folder_; }
  // A folder that does not exist leaves it empty.
  void SetFolder(std::string_view folder);
  const std::string& Pattern() const { return pattern_; }
  // Several patterns are separated by ";". Blanks go, and each "," becomes ";".
  void SetPattern(std::string_view pattern);

  void BeginSearch(std::string_view folder = {});

  // The whole content of a file, or "" on failure.
  std::string FileText(std::string_view path) const;
  // What stands behind the last backslash, or behind the last point; empty for a folder.
  std::string ExtractName(std::string_view path, bool extensionOnly) const;
  // Up to and including the last backslash; a folder itself with a backslash.
  std::string ExtractPath(std::string_view path) const;

 private:
  bool IsFolder(std::string_view path) const;
  void Walk(const std::string& folder);

  Files& files_;
  std::string folder_;  // empty means the current directory, which is the program's folder
  std::string pattern_ = "*.*";
  bool folderType_ = false;
  bool stop_ = false;
  long folderCount_ = 0;
  long fileCount_ = 0;
};

// The file name pattern of a directory search: "*" and "?", letter case folded; "*.*" fits all.
bool MatchesFilePattern(std::string_view name, std::string_view pattern);

}  // namespace quarnel
