#include "scan/cookie_scan.h"

#include "base/text.h"
#include "core/existing_files.h"
#include "core/like.h"
#include "core/lines.h"
#include "core/own_files.h"
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

// Which of the blocked patterns, for the user.
std::string EntryOf(size_t index) {
  return std::string(signature_file::kBlockedCookies) + ", entry " + std::to_string(index + 1);
}

}  // namespace

std::string GetWindowsSystemDirectory(Machine& machine) {
  return std::string(CutAtNul(GetWindowsSystemFolder(machine)));
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

bool CookieScan::LoadFileInListView(std::string_view file, ListView& list) {
  bool loaded = false;
  Reporting(u_.log, "LoadFileInListView", [&] {
    if (!EqualText(Dir(u_.files, file), kPlainPatterns)) return;
    const std::string text = ReadWholeFile(u_.files, file);
    FieldReader fields(text);
    while (auto field = fields.Next()) list.Add({.text = std::move(*field)});
    loaded = true;
  });
  return loaded;
}

void CookieScan::LoadBlockedCookies() {
  const std::string folder = GetPathWithSlash(GetWindowsSystemDirectory(u_.machine));
  const ComplementTools tools{u_.files, u_.host, u_.log, title_};
  const auto plainCopy = [&](std::string_view name) {
    std::string place = folder + std::string(name);
    IgnoringErrors([&] { place = OwnFileToWrite(u_.files, u_.machine, place); });
    return place;
  };
  const std::string plain = plainCopy(kPlainPatterns);
  const std::string source = SignaturePath(u_.machine, signature_file::kBlockedCookies);
  ListView& list = u_.page.lvwBlockedCookies;
  const bool isPlain = ComplementFile(tools, source, plain);
  list.Clear();
  if (!isPlain || !LoadFileInListView(plain, list)) {
    // Where the plain copy cannot be made or read, what it would hold is as good.
    list.Clear();
    for (std::string& pattern :
         ParseCookiePatterns(ComplementBytes(ReadWholeFile(u_.files, source)))) {
      list.Add({.text = std::move(pattern)});
    }
  }
  if (SignaturePresent(u_.files, u_.machine, signature_file::kIgnoredCookies)) {
    ComplementFile(tools, SignaturePath(u_.machine, signature_file::kIgnoredCookies),
                   plainCopy(kPlainIgnoreList));
  }
}

// Without those that no set should hold: a text is compared with a pattern piece by piece, which
// takes as long as both are.
PatternSet CookieScan::Patterns(bool tells) {
  std::vector<std::string> patterns;
  const std::vector<ListRow>& rows = u_.page.lvwBlockedCookies.Rows();
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].text.size() <= kLongestCookiePattern) {
      patterns.push_back(rows[i].text);
    } else if (tells) {
      u_.unread.AddNotRun(
          phase::kCookies,
          EntryOf(i) + ": longer than " + std::to_string(kLongestCookiePattern) + " characters");
    }
  }
  return PatternSet(std::move(patterns));
}

// Nothing for a folder that cannot be read: it was noted as such.
std::optional<std::vector<DirectoryEntry>> CookieScan::FilesOf(std::string_view folder) {
  try {
    std::vector<DirectoryEntry> files = u_.files.List(folder);
    std::erase_if(files, [](const DirectoryEntry& entry) { return entry.IsFolder(); });
    return files;
  } catch (const RuntimeError& error) {
    u_.log.NoteInPassing("DeleteCookie", error);
    return std::nullopt;
  }
}

void CookieScan::DeleteCookie(std::string_view folder, ListView& list, bool bDelete) {
  const auto work = [&] {
    const auto files = FilesOf(folder);
    if (!files) return;
    LoadBlockedCookies();
    Walk walk{.patterns = Patterns(!bDelete)};
    u_.page.pbgMain.SetMin(0);
    u_.page.pbgMain.SetMax(static_cast<double>(files->size() + 1));
    for (const DirectoryEntry& file : *files) {
      if (!TestCookie(GetPathWithSlash(folder) + file.name, !bDelete, walk)) return;
    }
    if (bDelete) DeleteTicked(list);
  };
  constexpr std::string_view kLabel = "DeleteCookie";
  if (bDelete) {
    Reporting(u_.log, kLabel, work);
  } else {
    ReportingPhase(
        u_, kLabel, phase::kCookies, [] { return signature_file::kBlockedCookies; }, work);
  }
}

bool CookieScan::TestCookie(const std::string& path, bool enter, Walk& walk) {
  ProgressBar& bar = u_.page.pbgMain;
  if (bar.Value() + 1 < bar.Max()) bar.SetValue(bar.Value() + 1);
  u_.page.lblStatus.SetCaption(path);
  std::string domain = FindDomianNameFromCookies(path);
  if (StartsWithText(domain, "www.")) domain.erase(0, 4);
  u_.page.lblTrackingObjectScanned.SetCaption(std::to_string(walk.lastIndex));
  const auto match = walk.patterns.FirstMatch(domain);
  walk.lastIndex = match ? *match + 1 : walk.patterns.Count();
  // The search tests the stop flag after a miss; a hit at once comes through. A walk that is to
  // delete is no scan, and Stop is not meant for it.
  if (walk.lastIndex > 1 || !match) {
    u_.host.DoEvents();
    if (enter && u_.flags.scanStopRequested) return false;
  }
  if (match && enter) Enter(path);
  return true;
}

void CookieScan::Enter(const std::string& path) {
  const Results::Entered entered =
      u_.results.Enter({.threat = {.name = std::string(kTrackingObject),
                                   .typeName = std::string(kTrackingCookies),
                                   .company = path},
                        .trace = CookieTrace{path},
                        .text = path,
                        .ignoredIsListed = true,
                        .rowsFirst = true});
  if (entered.root) u_.resultsPage.vbatvwResults.SetExpanded(*entered.root, true);
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
    std::string text;
    try {
      text = ReadWholeFile(u_.files, cookieFile, kLargestCookie);
    } catch (const RuntimeError&) {
      u_.unread.Add("file", cookieFile);
      throw;
    }
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
