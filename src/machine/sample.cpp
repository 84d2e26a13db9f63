#include "machine/sample.h"

#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/inifile.h"
#include "core/paths.h"
#include "machine/embedded.h"
#include "machine/sample_plan.h"
#include "platform/held_folders.h"
#include "platform/pe_writer.h"
#include "platform/shortcut.h"
#include "signatures/compiler.h"
#include "signatures/md5.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

// The name under which a scan shows all tracking cookies.
constexpr std::string_view kCookieThreat = "Tracking Object";

void WriteWhereDifferent(Files& files, const std::string& path, std::string_view bytes) {
  std::string present;
  const auto entry = files.Stat(path);
  if (entry && entry->size == bytes.size() &&
      IgnoringErrors([&] { present = ReadWholeFile(files, path, bytes.size()); }) &&
      present == bytes) {
    return;
  }
  CreateFolders(files, PartsOf(path).folder);
  WriteWholeFile(files, path, bytes);
}

// What the cookie store of the browser writes for one cookie.
std::string CookieText(std::string_view host) {
  return "visitor\n7f3c19e2a5\n" + std::string(host) +
         "/\n1024\n1876543232\n31987654\n2213445552\n31235566\n*\n";
}

void Check(RegistryStatus status, std::string_view key) {
  if (status == RegistryStatus::kSuccess) return;
  throw RuntimeError(ErrorNumber::kPermissionDenied, key, static_cast<long>(status));
}

class Planter {
 public:
  explicit Planter(Platform& platform) : platform_(platform) {
    Machine& machine = platform.machine();
    Registry& registry = platform.registry();
    constexpr std::string_view kOwnerKey = "Software\\Microsoft\\Protected Storage System Provider";
    const auto owners = EnumSubKeys(registry, hive::kCurrentUser, kOwnerKey);
    const std::string root = GetSystemRootPath(machine, registry);
    words_ = {{"{user}", machine.UserName()},
              {"{sid}", owners.empty() ? std::string() : owners.front()},
              {"{windows}", GetSpecialFolderPath(machine, csidl::kWindows)},
              {"{root}", root.substr(0, 3)},
              {"{programs}", GetProgramFilesPath(registry)},
              {"{common}", GetCommonProgramFilesPath(registry)},
              {"{personal}", GetSpecialFolderPath(machine, csidl::kPersonal)}};
  }

  PlantedSample Plant() {
    for (const SampleFile& file : SampleFiles()) PlantFile(file);
    for (const SampleCookie& cookie : SampleCookies()) PlantCookie(cookie);
    for (const SampleEntry& entry : SampleEntries()) PlantEntry(entry);
    PlantBrowserSettings();
    PlantSignatures();
    PlantHelp();
    return std::move(sample_);
  }

 private:
  // The text with its words filled in; nothing when the machine lacks one of them.
  std::optional<std::string> Fill(std::string_view text) const {
    std::string filled(text);
    for (const auto& [word, value] : words_) {
      if (filled.find(word) == std::string::npos) continue;
      if (value.empty()) return std::nullopt;
      filled = Replace(filled, word, value);
    }
    return filled;
  }

  std::string ContentOf(const SampleFile& file) const {
    switch (file.content) {
      case Content::kProgram:
        return MakeProgram({ApplicationRecord(1, 0, 0, 0), std::string(file.about),
                            "Harmless sample " + std::string(file.path)});
      case Content::kShortcut:
        return MakeShortcut(Fill(file.about).value_or(""));
      case Content::kWatch:
        return std::string(EmbeddedBytes("quarnel-sample-program"));
      case Content::kText:
        break;
    }
    return "A harmless sample: " + std::string(file.hashName.empty() ? file.path : file.hashName) +
           "\r\n";
  }

  void PlantFile(const SampleFile& file) {
    const std::string bytes = ContentOf(file);
    if (!file.hashName.empty()) hashes_[file.hashName] = HexText(Md5Of(bytes));
    const std::string folder = GetSpecialFolderPath(platform_.machine(), file.folder);
    const auto below = Fill(file.path);
    if (folder.empty() || !below) return;
    const std::string path = folder + *below;
    WriteWhereDifferent(platform_.files(), path, bytes);
    if (file.content == Content::kWatch) {
      sample_.programPath = path;
      // The inspection of running programs shows their paths in upper case.
      AddTrace(file.threat, PlantedKind::kProgram, ToUpper(path));
    } else if (file.threat.empty()) {
      sample_.cleanFiles.push_back(path);
    } else {
      AddTrace(file.threat, PlantedKind::kFile, path);
    }
  }

  void PlantCookie(const SampleCookie& cookie) {
    const std::string folder = GetSpecialFolderPath(platform_.machine(), csidl::kCookies);
    const auto name = Fill(cookie.name);
    if (folder.empty() || !name) return;
    const std::string path = folder + *name;
    WriteWhereDifferent(platform_.files(), path, CookieText(cookie.host));
    if (cookie.isTracking) {
      AddTrace(kCookieThreat, PlantedKind::kCookie, path);
    } else {
      sample_.cleanFiles.push_back(path);
    }
  }

  void PlantEntry(const SampleEntry& entry) {
    const auto key = Fill(entry.key);
    const auto value = Fill(entry.value);
    const auto data = Fill(entry.data);
    if (!key || !value || !data) return;
    Registry& registry = platform_.registry();
    if (value->empty() && data->empty()) {
      Check(CreateNewKey(registry, entry.hive, *key), *key);
    } else {
      constexpr std::string_view kNumber = "dword:";
      RegistryValue content = *data;
      if (data->starts_with(kNumber)) {
        content = static_cast<uint32_t>(ValLong(data->substr(kNumber.size())));
      }
      Check(RegCreateKeyValue(registry, entry.hive, *key, *value, content), *key);
    }
    if (entry.threat.empty()) return;
    const bool keepsKey = entry.shown == Shown::kKeyAsWritten || entry.shown == Shown::kAsWritten;
    const bool keepsValue =
        entry.shown == Shown::kValueAsWritten || entry.shown == Shown::kAsWritten;
    AddTrace(entry.threat, PlantedKind::kRegistry,
             RegistryTraceText(HiveName(entry.hive), keepsKey ? *key : ToUpper(*key),
                               keepsValue ? *value : ToUpper(*value)));
  }

  // A browser that has a home page is in use and keeps all its settings.
  void PlantBrowserSettings() {
    Registry& registry = platform_.registry();
    const SampleBrowserSetting& home = SampleBrowserSettings().front();
    if (!QueryText(registry, home.hive, home.key, home.value).empty()) return;
    cInifile baselines(platform_.files(), platform_.machine());
    baselines.SetPath(GetPathWithSlash(platform_.machine().ProgramFolder()) + "QS_BHR.ini");
    baselines.SetSection("BHR Settings");
    for (const SampleBrowserSetting& setting : SampleBrowserSettings()) {
      Check(RegCreateKeyValue(registry, setting.hive, setting.key, setting.value,
                              std::string(setting.data)),
            setting.key);
      if (setting.baseline.empty()) continue;
      baselines.SetKey(setting.baseline);
      baselines.SetValue(setting.before);
    }
  }

  // Where the program looks for them: in its own folder.
  void PlantHelp() {
    const std::string folder = GetPathWithSlash(platform_.machine().ProgramFolder());
    for (const EmbeddedFile& file : EmbeddedFiles()) {
      if (!file.name.ends_with(".html")) continue;
      WriteWhereDifferent(platform_.files(), folder + std::string(file.name), file.bytes);
    }
  }

  void PlantSignatures() {
    SignatureSources sources;
    for (const SourceFile& source : SourceFiles()) {
      std::string text(EmbeddedBytes(source.name));
      for (const auto& [name, hash] : hashes_) {
        text = Replace(text, "{md5:" + std::string(name) + "}", hash);
      }
      sources.*source.text = std::move(text);
    }
    const CompiledSet set = CompileSet(sources);
    if (!set.errors.empty()) {
      throw RuntimeError(ErrorNumber::kInvalidCall, set.errors.front().Text());
    }
    for (const CompiledFile& file : set.files) {
      WriteWhereDifferent(platform_.files(), DataFolder(platform_.machine()) + file.name,
                          file.bytes);
    }
  }

  void AddTrace(std::string_view threat, PlantedKind kind, std::string trace) {
    sample_.traces.push_back({std::string(threat), kind, std::move(trace)});
  }

  Platform& platform_;
  std::vector<std::pair<std::string_view, std::string>> words_;
  std::map<std::string_view, std::string> hashes_;  // by the name that sources use
  PlantedSample sample_;
};

}  // namespace

std::string_view PlantedKindName(PlantedKind kind) {
  constexpr std::string_view kNames[] = {"file", "registry", "cookie", "program"};
  return kNames[static_cast<size_t>(kind)];
}

PlantedSample PlantSample(Platform& platform) { return Planter(platform).Plant(); }

}  // namespace quarnel
