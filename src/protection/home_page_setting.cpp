#include "protection/home_page_setting.h"

#include <algorithm>

#include "base/text.h"
#include "core/lines.h"
#include "core/paths.h"

namespace quarnel {
namespace {

constexpr std::string_view kPreferences = "prefs.js";
constexpr std::string_view kOperaIni = "Opera6.ini";
constexpr std::string_view kOperaKey = "SOFTWARE\\Netscape\\Netscape Navigator\\5.0, Opera\\Main";

// No file of settings is larger.
constexpr uint64_t kLargest = 4 << 20;

void SkipBlanks(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

bool Skip(std::string_view& text, std::string_view word) {
  SkipBlanks(text);
  if (!text.starts_with(word)) return false;
  text.remove_prefix(word.size());
  return true;
}

// A text in quotation marks, with the escapes that such files use; nothing when it does not end.
std::optional<std::string> TakeQuoted(std::string_view& text) {
  SkipBlanks(text);
  if (text.empty() || (text[0] != '"' && text[0] != '\'')) return std::nullopt;
  const char mark = text[0];
  std::string result;
  for (size_t i = 1; i < text.size(); ++i) {
    if (text[i] == mark) {
      text.remove_prefix(i + 1);
      return result;
    }
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    result += text[i];
  }
  return std::nullopt;
}

std::string LastKnown(const Settings& settings, std::string_view browser) {
  return settings.Get(setting::kHomePageOf.Named(browser));
}

// The text of a file of settings; nothing when it is not there or too large to be one.
std::optional<std::string> TextOf(Files& files, std::string_view path) {
  std::string text;
  if (!IgnoringErrors([&] { text = ReadWholeFile(files, path, kLargest); })) return std::nullopt;
  return text;
}

// Folders of other programs may be links to anywhere, and as deep as anybody liked.
constexpr int kDeepest = 8;

std::string FindBelow(Files& files, const std::string& folder, std::string_view name, int depth) {
  std::vector<DirectoryEntry> entries;
  if (!IgnoringErrors([&] { entries = files.List(folder); })) return {};
  bool named = false;
  bool chrome = false;
  for (const DirectoryEntry& entry : entries) {
    named = named || (!entry.IsFolder() && EqualText(entry.name, name));
    chrome = chrome || (entry.IsFolder() && EqualText(entry.name, "chrome"));
  }
  if (named && chrome) return GetPathWithSlash(folder) + std::string(name);
  for (const DirectoryEntry& entry : entries) {
    if (!entry.IsFolder() || depth == kDeepest) continue;
    std::string found = FindBelow(files, GetPathWithSlash(folder) + entry.name, name, depth + 1);
    if (!found.empty()) return found;
  }
  return {};
}

}  // namespace

void SetHomePageKeyValue(const Services& services, std::string_view key, std::string_view valueName,
                         const RegistryValue& value, ValueType type) {
  Reporting(services.log, "SetHomePageKeyValue", [&] {
    std::unique_ptr<RegistryKey> open;
    services.platform.registry().Open(hive::kCurrentUser, key, registry_access::kReadWrite, open);
    if (open) SetValueEx(*open, valueName, type, value);
  });
}

std::optional<std::string> HomePageInPreferences(std::string_view bytes) {
  std::optional<std::string> page;
  LineReader lines(bytes);
  while (auto line = lines.Next()) {
    if (!Skip(*line, "user_pref") || !Skip(*line, "(")) continue;
    if (TakeQuoted(*line) != "browser.startup.homepage" || !Skip(*line, ",")) continue;
    if (auto value = TakeQuoted(*line)) page = std::move(value);
  }
  return page;
}

std::optional<std::string> HomePageInOperaIni(std::string_view bytes) {
  constexpr std::string_view kPrefix = "Home URL=";
  LineReader lines(bytes);
  while (const auto line = lines.Next()) {
    if (StartsWithText(*line, kPrefix)) return std::string(Trim(line->substr(kPrefix.size())));
  }
  return std::nullopt;
}

std::string FindProfileFolderPath(const Services& services) {
  std::string path;
  Reporting(services.log, "FindProfileFolderPath", [&] {
    const auto data = services.platform.machine().SpecialFolder(csidl::kAppData);
    if (!data) return;
    Files& files = services.platform.files().WithoutLinks();
    const std::string folder = GetPathWithSlash(*data) + "Netscape";
    if (!files.Stat(folder)) return;
    for (const DirectoryEntry& entry : files.List(folder)) {
      if (!entry.IsFolder() || !StartsWithText(entry.name, "profile")) continue;
      path = GetPathWithSlash(folder) + entry.name;
      return;
    }
  });
  return path;
}

std::string FindFile(const Services& services, std::string_view folder, std::string_view name) {
  std::string path;
  Reporting(services.log, "FindFile", [&] {
    if (folder.empty()) return;
    path = FindBelow(services.platform.files().WithoutLinks(), std::string(folder), name, 0);
  });
  return path;
}

std::string GetNetscapeHomePage(const Services& services) {
  std::string page;
  Reporting(services.log, "GetNetscapeHomePage", [&] {
    page = LastKnown(services.settings, "Netscape");
    const std::string path = FindFile(services, FindProfileFolderPath(services), kPreferences);
    if (path.empty()) return;
    const auto text = TextOf(services.platform.files().WithoutLinks(), path);
    if (text) page = HomePageInPreferences(*text).value_or(page);
  });
  return page;
}

std::string GetOperaHomePage(const Services& services) {
  std::string page;
  Reporting(services.log, "GetOperaHomePage", [&] {
    page = LastKnown(services.settings, "Opera");
    std::vector<std::string> folders;
    const std::string installed = QueryText(services.platform.registry(), hive::kLocalMachine,
                                            kOperaKey, "Install Directory");
    if (!installed.empty()) folders.push_back(GetPathWithSlash(installed));
    if (const auto data = services.platform.machine().SpecialFolder(csidl::kAppData)) {
      folders.push_back(GetPathWithSlash(*data) + "Opera\\OPERA7\\profile\\");
    }
    for (const std::string& folder : folders) {
      const auto text =
          TextOf(services.platform.files().WithoutLinks(), folder + std::string(kOperaIni));
      const auto found = text ? HomePageInOperaIni(*text) : std::nullopt;
      if (!found) continue;
      page = *found;
      return;
    }
  });
  return page;
}

}  // namespace quarnel
