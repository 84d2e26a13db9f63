#include "scan/cookie_scan.h"

#include "base/text.h"
#include "core/like.h"
#include "core/lines.h"
#include "core/paths.h"
#include "scan/progress.h"
#include "signatures/complement.h"
#include "signatures/signature_files.h"

namespace quarnel {
namespace {

constexpr std::string_view kPlainPatterns = "BlockedCookies";
constexpr std::string_view kPlainIgnoreList = "ignorListTemp";
// No cookie is larger than this; a larger file in the folder is none.
constexpr uint64_t kLargestCookie = 1 << 20;

}  // namespace

std::string GetWindowsSystemDirectory(Machine& machine) {
  const std::string folder = GetWindowsSystemFolder(machine);
  return folder.substr(0, folder.find('\0'));
}

std::string GetExtractedFilenameFromPath(std::string_view path) {
  const size_t at = path.find('@');
  if (at == std::string_view::npos) return {};
  const std::string_view name = path.substr(at + 1);
  size_t end = name.find('(');
  if (end == std::string_view::npos) end = name.find('[');
  if (end == std::string_view::npos) end = name.rfind('.');
  return std::string(name.substr(0, end));
}

void CookieScan::DeleteSelectedCookies(ListView& list, bool bDelete) {
  Reporting(u_.log, "DeleteSelectedCookies", [&] {
    const std::string folder = GetPath(u_.machine, csidl::kCookies);
    if (!folder.empty()) DeleteCookie(folder, list, bDelete);
  });
}

void CookieScan::LoadFileInListView(std::string_view file, ListView& list) {
  Reporting(u_.log, "LoadFileInListView", [&] {
    if (!EqualText(Dir(u_.files, file), kPlainPatterns)) return;
    const std::string text = ReadWholeFile(u_.files, file);
    FieldReader fields(text);
    while (auto field = fields.Next()) list.Add({.text = std::move(*field)});
  });
}

std::vector<std::string> CookieScan::LoadPatterns() {
  const std::string folder = GetPathWithSlash(GetWindowsSystemDirectory(u_.machine));
  const ComplementTools tools{u_.files, u_.host, u_.log, title_};
  const std::string plain = folder + std::string(kPlainPatterns);
  ComplementFile(tools, SignaturePath(u_.machine, signature_file::kBlockedCookies), plain);
  u_.page.lvwBlockedCookies.Clear();
  LoadFileInListView(plain, u_.page.lvwBlockedCookies);
  if (SignaturePresent(u_.files, u_.machine, signature_file::kIgnoredCookies)) {
    ComplementFile(tools, SignaturePath(u_.machine, signature_file::kIgnoredCookies),
                   folder + std::string(kPlainIgnoreList));
  }
  std::vector<std::string> patterns;
  for (const ListRow& row : u_.page.lvwBlockedCookies.Rows()) patterns.push_back(row.text);
  return patterns;
}

void CookieScan::DeleteCookie(std::string_view folder, ListView& list, bool bDelete) {
  Reporting(u_.log, "DeleteCookie", [&] {
    std::vector<DirectoryEntry> files = u_.files.List(folder);
    std::erase_if(files, [](const DirectoryEntry& entry) { return entry.IsFolder(); });
    Walk walk{.patterns = PatternSet(LoadPatterns())};
    u_.page.pbgMain.SetMin(0);
    u_.page.pbgMain.SetMax(static_cast<double>(files.size() + 1));
    for (const DirectoryEntry& file : files) {
      if (!TestCookie(GetPathWithSlash(folder) + file.name, list, !bDelete, walk)) return;
    }
    if (bDelete) DeleteTicked(list);
  });
}

bool CookieScan::TestCookie(const std::string& path, ListView& list, bool enter, Walk& walk) {
  ProgressBar& bar = u_.page.pbgMain;
  if (bar.Value() + 1 < bar.Max()) bar.SetValue(bar.Value() + 1);
  u_.page.lblStatus.SetCaption(path);
  std::string domain = FindDomianNameFromCookies(path);
  if (StartsWithText(domain, "www.")) domain.erase(0, 4);
  u_.page.lblTrackingObjectScanned.SetCaption(std::to_string(walk.lastIndex));
  const auto match = walk.patterns.FirstMatch(domain);
  walk.lastIndex = match ? *match + 1 : walk.patterns.Count();
  // The search tests the stop flag after a miss; a hit at once comes through.
  if (walk.lastIndex > 1 || !match) {
    u_.host.DoEvents();
    if (u_.flags.scanStopRequested) return false;
  }
  if (match && enter) Enter(path, list);
  return true;
}

void CookieScan::Enter(const std::string& path, ListView& list) {
  ResultsPage& page = u_.resultsPage;
  const bool ignored = u_.results.IsSpywareIgnored(path, "", "");
  ListView& threats = page.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
  if (!ignored && !threats.FindText(kTrackingObject)) {
    threats.Add(
        {.text = std::string(kTrackingObject), .subItems = {std::string(kTrackingCookies), path}});
    u_.results.AddThreatRoot(kTrackingObject, kTrackingCookies);
  }
  if (const TreeNodeRef root = page.vbatvwResults.Find(kTrackingObject)) {
    page.vbatvwResults.SetExpanded(*root, true);
    u_.results.ShowTrace(root, {.text = path, .ignored = ignored});
  }
  list.Add({.text = path, .subItems = {"File"}});
  page.lbltracesFound.SetCaption(std::to_string(list.Count()));
  u_.results.RecomputeCounters();
}

// Rows move up after a removal while the walk goes on by one, so the row behind each removed one is
// passed over: one call takes every other row of a ticked run.
void CookieScan::DeleteTicked(ListView& list) {
  for (size_t i = 0; i < list.Count(); ++i) {
    const ListRow row = list.At(i);
    if (!row.checked || u_.results.IsSpywareIgnored(row.text, "", "")) continue;
    list.Remove(i);
    if (!Dir(u_.files, row.text, Search::kHidden).empty()) u_.files.Delete(row.text);
  }
}

std::string CookieScan::FindDomianNameFromCookies(std::string_view cookieFile) {
  std::string result = "False";
  Reporting(u_.log, "FindDomianNameFromCookies", [&] {
    const std::string name = GetExtractedFilenameFromPath(cookieFile);
    if (name.empty() || !FileExists(u_.files, cookieFile)) return;
    result = name;
    const std::string text = ReadWholeFile(u_.files, cookieFile, kLargestCookie);
    FieldReader fields(text);
    while (const auto field = fields.Next()) {
      const size_t position = field->find(name);
      if (position == std::string::npos) continue;
      const std::string_view behind = std::string_view(*field).substr(position);
      const size_t slash = behind.find('/');
      if (slash != std::string_view::npos) {
        result = behind.substr(0, slash);
        return;
      }
    }
  });
  return result;
}

}  // namespace quarnel
