#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "core/paths.h"
#include "recovery/backup.h"
#include "recovery/restore.h"
#include "recovery/restore_point.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {

// The machine, with the program in a folder of the test's own.
class MachineWithProgramIn : public Machine {
 public:
  MachineWithProgramIn(Machine& machine, std::string folder)
      : machine_(machine), folder_(std::move(folder)) {}
  std::optional<std::string> SpecialFolder(int csidl) override {
    return machine_.SpecialFolder(csidl);
  }
  std::string SystemDirectory() override { return folder_; }
  std::string ProgramFolder() override { return folder_; }
  std::string ExecutableName() override { return machine_.ExecutableName(); }
  std::optional<std::string> TempFolder() override { return machine_.TempFolder(); }
  std::optional<SystemFamily> Family() override { return machine_.Family(); }
  std::string UserName() override { return machine_.UserName(); }
  std::vector<Drive> Drives() override { return machine_.Drives(); }
  std::optional<VolumeInfo> Volume(std::string_view root) override { return machine_.Volume(root); }

 private:
  Machine& machine_;
  std::string folder_;
};

// A machine with the lists of a scan, and restore points in a folder of the test's own.
class BackupTest : public PlatformTest {
 protected:
  BackupTest() { files().CreateFolder(program.ProgramFolder()); }

  MachineWithProgramIn program{machine(), Path("Program")};
  TestHost host;
  Form form{host, "frmMain"};
  BackupPage page{form};
  ResultsPage results{form};
  ErrorLog log{files(), program, host, "Quarnel"};
  Settings settings{registry(), "Quarnel"};
  Backup backup{{.page = page,
                 .results = results,
                 .files = files(),
                 .registry = registry(),
                 .machine = program,
                 .host = host,
                 .log = log}};
  Restore restore{{.page = page,
                   .files = files(),
                   .registry = registry(),
                   .machine = program,
                   .settings = settings,
                   .host = host,
                   .log = log}};

  std::string LogText() {
    return FileExists(files(), log.Path()) ? ReadWholeFile(files(), log.Path()) : std::string();
  }
  std::string Read(const std::string& path) { return ReadWholeFile(files(), path); }
  bool Exists(const std::string& path) { return files().Stat(path).has_value(); }
  std::string PointFile(const BackupReport& report, std::string_view ending) {
    return RestorePointFile(program, report.stem, ending);
  }

  // A file, and a row for it.
  std::string Plant(const std::string& path, std::string_view bytes, bool cookie = false) {
    CreateFolders(files(), path.substr(0, path.rfind('\\')));
    WriteWholeFile(files(), path, bytes);
    AddRow(path, cookie);
    return path;
  }
  void AddRow(const std::string& path, bool cookie = false) {
    if (cookie) {
      results.lvwTrackingCookieObjectrecognized.Add({.text = path, .subItems = {"File"}});
    } else {
      results.lvwFilesToBeDeleted.Add({.text = path, .subItems = {"Trojan", "Threat"}});
    }
  }
  // A row for a key below the test's own, or for a value of it.
  void AddTrace(std::string_view name, std::string_view valueName = {}) {
    results.lvwRegistryEntriesFound.Add(
        {.text = "Company",
         .subItems = {"Threat", "Trojan", std::to_string(static_cast<int32_t>(kRoot)), Key(name),
                      std::string(valueName), "display"}});
  }
  void SetValue(std::string_view name, std::string_view valueName, const RawValue& value) {
    std::unique_ptr<RegistryKey> key;
    registry().Create(kRoot, Key(name), key);
    ASSERT_EQ(key->Set(valueName, value), RegistryStatus::kSuccess) << valueName;
  }

  // All of the test's keys with their values: "path", and "path -> name" with type and data.
  std::map<std::string, std::string> RegistryDump() {
    std::map<std::string, std::string> dump;
    DumpKey(std::string(kTestKey), dump);
    return dump;
  }

 private:
  void DumpKey(const std::string& path, std::map<std::string, std::string>& dump) {
    std::unique_ptr<RegistryKey> key;
    if (registry().Open(kRoot, path, registry_access::kRead, key) != RegistryStatus::kSuccess) {
      return;
    }
    dump[path] = "key";
    std::string name;
    for (uint32_t i = 0; key->EnumValue(i, name) == RegistryStatus::kSuccess; ++i) {
      RawValue value;
      key->Query(name, value);
      dump[path + " -> " + name] =
          std::to_string(static_cast<uint32_t>(value.type)) + ":" + value.data;
    }
    for (const std::string& below : EnumSubKeys(registry(), kRoot, path)) {
      DumpKey(path + "\\" + below, dump);
    }
  }
};

}  // namespace quarnel
