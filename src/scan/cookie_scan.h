#pragma once

#include <string>
#include <string_view>

#include "scan/pattern_set.h"
#include "scan/scan_context.h"

namespace quarnel {

// The one threat under which all tracking cookies stand.
inline constexpr std::string_view kTrackingObject = "Tracking Object";
inline constexpr std::string_view kTrackingCookies = "Tracking Cookies";

// The cookie phase: the files of the user's cookie folder are looked up by their domains in the
// list of blocked patterns. The same procedures delete the ticked cookies.
class CookieScan {
 public:
  // `title` is that of message boxes.
  CookieScan(const ScanContext& context, std::string title)
      : u_(context), title_(std::move(title)) {}

  // Scans the user's cookie folder into `list`, and with `bDelete` deletes ticked rows of it
  // instead. Does nothing when the user has no such folder.
  void DeleteSelectedCookies(ListView& list, bool bDelete);
  void DeleteCookie(std::string_view folder, ListView& list, bool bDelete);

  // Adds one row for each comma-delimited field of the file "BlockedCookies", whatever its folder;
  // a file of any other name is left alone.
  void LoadFileInListView(std::string_view file, ListView& list);

  // The host that a cookie file names, with its sub-domain; the name in its file name when the file
  // does not tell. "False" for a file that is missing or has no such name.
  std::string FindDomianNameFromCookies(std::string_view cookieFile);

 private:
  // What the walk keeps from one file to the next.
  struct Walk {
    PatternSet patterns;
    size_t lastIndex = 0;  // where the search of the file before ended, from 1
  };

  std::vector<std::string> LoadPatterns();
  // False when the scan was stopped.
  bool TestCookie(const std::string& path, ListView& list, bool enter, Walk& walk);
  void Enter(const std::string& path, ListView& list);
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
