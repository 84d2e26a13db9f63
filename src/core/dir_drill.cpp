#include "core/dir_drill.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/paths.h"
#include "platform/names.h"

namespace quarnel {
namespace {

// What a plain directory search does not give.
constexpr uint32_t kUnseen = file_attribute::kHidden | file_attribute::kSystem;
// A walk that followed links could meet a folder again below itself, and never end.
constexpr uint32_t kNotEntered = kUnseen | file_attribute::kReparsePoint;

bool MatchesWildcards(std::string_view name, std::string_view pattern) {
  size_t at = 0;
  size_t place = 0;
  // The place behind the last star, and how far that star reaches so far.
  size_t behindStar = std::string_view::npos;
  size_t starEnd = 0;
  while (at < name.size()) {
    if (place < pattern.size() && pattern[place] == '*') {
      behindStar = ++place;
      starEnd = at;
    } else if (place < pattern.size() &&
               (pattern[place] == '?' || EqualText(name.substr(at, 1), pattern.substr(place, 1)))) {
      ++place;
      ++at;
    } else if (behindStar != std::string_view::npos) {
      place = behindStar;
      at = ++starEnd;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', place) == std::string_view::npos;
}

}  // namespace

bool MatchesFilePattern(std::string_view name, std::string_view pattern) {
  if (pattern.empty()) return false;
  if (!IsAscii(name) && !IsAscii(pattern)) {
    const std::string folded = FoldName(name);
    if (folded != name) return MatchesFilePattern(folded, FoldName(pattern));
  }
  if (MatchesWildcards(name, pattern)) return true;
  return pattern.ends_with(".*") && name.find('.') == std::string_view::npos &&
         MatchesWildcards(name, pattern.substr(0, pattern.size() - 2));
}

bool CDirDrill::IsFolder(std::string_view path) const {
  const auto entry = files_.Stat(path);
  return entry && entry->IsFolder();
}

void CDirDrill::SetFolder(std::string_view folder) {
  folder_ = IsFolder(folder) ? folder : std::string_view();
}

void CDirDrill::SetPattern(std::string_view pattern) {
  pattern_ = Replace(Replace(pattern, " ", ""), ",", ";");
}

void CDirDrill::BeginSearch(std::string_view folder) {
  if (!folder.empty()) SetFolder(folder);
  stop_ = false;
  folderCount_ = 1;
  fileCount_ = 0;
  // The folders still to be visited, the next one last.
  std::vector<std::string> waiting;
  if (!folder_.empty()) waiting.push_back(folder_);
  while (!waiting.empty() && !stop_) {
    const std::string next = std::move(waiting.back());
    waiting.pop_back();
    std::vector<std::string> below = VisitFolder(GetPathWithSlash(next));
    waiting.insert(waiting.end(), std::make_move_iterator(below.rbegin()),
                   std::make_move_iterator(below.rend()));
  }
  if (Done) Done(folderCount_, fileCount_);
}

// Reports one folder and its files; the folders in it, in their order.
std::vector<std::string> CDirDrill::VisitFolder(const std::string& folder) {
  std::vector<std::string> below;
  if (NewFolder) IgnoringErrors([&] { NewFolder(stop_, folder); });
  if (stop_) return below;
  std::vector<DirectoryEntry> entries;
  IgnoringErrors([&] { entries = files_.List(folder); });
  for (const DirectoryEntry& entry : entries) {
    if (entry.name.starts_with('.') || !entry.IsFolder()) continue;
    if (entry.IsLink() && LinkedFolder) LinkedFolder(folder + entry.name);
    if ((entry.attributes & kNotEntered) != 0) continue;
    below.push_back(folder + entry.name);
    ++folderCount_;
  }
  for (const std::string& pattern : Split(pattern_, ";")) {
    for (const DirectoryEntry& entry : entries) {
      if (stop_) return below;
      if (entry.IsFolder() || (entry.attributes & kUnseen) != 0) continue;
      if (!MatchesFilePattern(entry.name, pattern)) continue;
      ++fileCount_;
      if (NewFile) IgnoringErrors([&] { NewFile(stop_, folder + entry.name); });
    }
  }
  return below;
}

std::string CDirDrill::FileText(std::string_view path) const {
  std::string text;
  IgnoringErrors([&] { text = ReadWholeFile(files_, path); });
  return text;
}

std::string CDirDrill::ExtractName(std::string_view path, bool extensionOnly) const {
  if (IsFolder(path)) return {};
  const std::string_view name = path.substr(path.rfind('\\') + 1);
  if (!extensionOnly) return std::string(name);
  const size_t point = name.rfind('.');
  return point == std::string_view::npos ? std::string() : std::string(name.substr(point + 1));
}

std::string CDirDrill::ExtractPath(std::string_view path) const {
  if (IsFolder(path)) return GetPathWithSlash(path);
  return std::string(path.substr(0, path.rfind('\\') + 1));
}

}  // namespace quarnel
