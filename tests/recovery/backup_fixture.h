#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "core/paths.h"
#include "machine/registry_transfer.h"
#include "recovery/backup.h"
#include "recovery/restore.h"
#include "recovery/restore_point.h"
#include "support/machine_in.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {

// A machine with the lists of a scan, and restore points in a folder of the test's own.
class BackupTest : public PlatformTest {
 protected:
  BackupTest() { files().CreateFolder(program.ProgramFolder()); }

  MachineIn program{machine(), Path("Program")};
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

  static RawValue Text(std::string_view text) { return RawFromValue(std::string(text)); }
  std::string LogText() { return Exists(log.Path()) ? Read(log.Path()) : std::string(); }
  std::string PointFile(const BackupReport& report, std::string_view ending) {
    return RestorePointFile(program, report.stem, ending);
  }

  // A file, and a row for it.
  std::string Plant(const std::string& path, std::string_view bytes, bool cookie = false) {
    AddRow(Write(path, bytes), cookie);
    return path;
  }
  void AddRow(const std::string& path, bool cookie = false) {
    if (cookie) {
      results.lvwTrackingCookieObjectrecognized.Add(CookieTrace{path}.Row());
    } else {
      results.lvwFilesToBeDeleted.Add(FileTrace{path, "Trojan", "Threat"}.Row());
    }
  }
  // A row for a key below the test's own, or for a value of it.
  void AddTrace(std::string_view name, std::string_view valueName = {}) {
    results.lvwRegistryEntriesFound.Add(
        RegistryTrace{"Company", "Threat", "Trojan", kRoot, Key(name), std::string(valueName)}
            .Row());
  }
  void SetValue(std::string_view name, std::string_view valueName, const RawValue& value) {
    std::unique_ptr<RegistryKey> key;
    registry().Create(kRoot, Key(name), key);
    ASSERT_EQ(key->Set(valueName, value), RegistryStatus::kSuccess) << valueName;
  }

  // All of the test's keys with their values: "path", and "path -> name" with type and data.
  std::map<std::string, std::string> RegistryDump() {
    std::map<std::string, std::string> dump;
    std::vector<RegStep> steps;
    CollectSteps(registry(), {kRoot, std::string(kTestKey)}, steps);
    for (const auto& [action, key, name, value, line] : steps) {
      if (action == RegStep::Action::kMakeKey) {
        dump[key.path] = "key";
      } else {
        dump[key.path + " -> " + name] =
            std::to_string(static_cast<uint32_t>(value.type)) + ":" + value.data;
      }
    }
    return dump;
  }
};

}  // namespace quarnel
