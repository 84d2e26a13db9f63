#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace quarnel {

// Walks a folder tree and reports folders and files by events: all files of a folder come before
// anything of its sub-folders. Listings are snapshots, so events processed in a handler cannot
// disturb the walk. As in any plain directory search, hidden and system entries do not show.
class CDirDrill {
 public:
  explicit CDirDrill(Files& files) : files_(files) {}

  // `cancel` set by a handler ends the walk. Paths of folders end in a backslash. An error that a
  // handler raises is ignored, as every error inside the walk is.
  std::function<void(bool& cancel, const std::string& path)> NewFile;
  std::function<void(bool& cancel, const std::string& path)> NewFolder;
  // Comes for a folder that is a link, hidden or not: such a one is not entered.
  std::function<void(const std::string& path)> LinkedFolder;
  // Comes at the end of every search, also of one that was cancelled or had no folder. The folder
  // in which the search began counts as one.
  std::function<void(long folders, long files)> Done;

  bool FolderType() const { return folderType_; }
  void SetFolderType(bool folderType) { folderType_ = folderType; }
  // "." at first: the current directory, which is the program's folder.
  const std::string& Folder() const { return folder_; }
  // A folder that does not exist leaves it empty.
  void SetFolder(std::string_view folder);
  const std::string& Pattern() const { return pattern_; }
  // Several patterns are separated by ";". Blanks go, and each "," becomes ";". A file that fits
  // two patterns is reported twice.
  void SetPattern(std::string_view pattern);

  // Walks `folder`, or the present Folder when none is given.
  void BeginSearch(std::string_view folder = {});

  // The whole content of a file, or "" on failure.
  std::string FileText(std::string_view path) const;
  // What stands behind the last backslash, or in that name behind the last point; empty for a
  // folder.
  std::string ExtractName(std::string_view path, bool extensionOnly) const;
  // Up to and including the last backslash; a folder itself with a backslash.
  std::string ExtractPath(std::string_view path) const;

 private:
  bool IsFolder(std::string_view path) const;
  std::vector<std::string> VisitFolder(const std::string& folder);

  Files& files_;
  std::string folder_ = ".";
  std::string pattern_ = "*.*";
  bool folderType_ = false;
  bool stop_ = false;
  long folderCount_ = 0;
  long fileCount_ = 0;
};

// The file name pattern of a directory search: "*" and "?", letter case folded. A pattern that ends
// in ".*" also fits a name without an extension, so "*.*" fits all.
bool MatchesFilePattern(std::string_view name, std::string_view pattern);

}  // namespace quarnel
