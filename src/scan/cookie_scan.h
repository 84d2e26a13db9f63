#pragma once

#include <string>
#include <string_view>

#include "scan/pattern_set.h"
#include "scan/scan_context.h"

namespace quarnel {

// The cookie phase: the files of the user's cookie folder are looked up by their domains in the
// list of blocked patterns. The same procedures delete the ticked cookies.
class CookieScan {
 public:
  // `title` is that of message boxes.
  CookieScan(const ScanContext& context, std::string title)
      : u_(context), title_(std::move(title)) {}

  // Scans the user's cookie folder into the results, and with `bDelete` deletes ticked rows of
  // `list` instead. Does nothing when the user has no such folder.
  void DeleteSelectedCookies(ListView& list, bool bDelete);
  void DeleteCookie(std::string_view folder, ListView& list, bool bDelete);

  // Adds one row for each comma-delimited field of the file "BlockedCookies", whatever its folder;
  // a file of any other name is left alone.
  // True when it was read.
  bool LoadFileInListView(std::string_view file, ListView& list);

  // The host that a cookie file names, with its sub-domain; the name in its file name when the file
  // does not tell. "False" for a file that is missing or has no such name.
  std::string FindDomianNameFromCookies(std::string_view cookieFile);

 private:
  // What the walk keeps from one file to the next.
  struct Walk {
    PatternSet patterns;
    size_t lastIndex = 0;  // where the search of the file before ended, from 1
  };

  void LoadBlockedCookies();
  PatternSet Patterns(bool tells);
  std::optional<std::vector<DirectoryEntry>> FilesOf(std::string_view folder);
  // False when the scan was stopped.
  bool TestCookie(const std::string& path, bool enter, Walk& walk);
  void Enter(const std::string& path);
  void DeleteTicked(ListView& list);

  ScanContext u_;
  std::string title_;
};

// The domain in a cookie file's name: user name, "@", domain, "[", a number, "].txt". Empty without
// an "@".
std::string GetExtractedFilenameFromPath(std::string_view path);

// The system folder, cut at a NUL.
std::string GetWindowsSystemDirectory(Machine& machine);

}  // namespace quarnel
