#pragma once

#include <string>
#include <string_view>

#include "base/runtime_error.h"
#include "core/paths.h"
#include "platform/platform.h"
#include "protection/browser_setting_table.h"

namespace quarnel {

// The browser of a test's machine. It has no settings at first, and the guard's files are there
// neither before nor after.
class BrowserOnMachine {
 public:
  explicit BrowserOnMachine(Platform& platform) : platform_(platform) {
    for (size_t i = 0; i < BrowserSettingTable().size(); ++i) Forget(i);
    DeleteFiles();
  }
  ~BrowserOnMachine() { DeleteFiles(); }
  BrowserOnMachine(const BrowserOnMachine&) = delete;
  BrowserOnMachine& operator=(const BrowserOnMachine&) = delete;

  // Settings by their places in the table, as any program changes them. The first is the home page.
  void Set(size_t i, std::string_view text) {
    const BrowserSetting& setting = BrowserSettingTable()[i];
    RegCreateKeyValue(platform_.registry(), setting.hive, setting.key, setting.value,
                      std::string(text));
  }
  void Forget(size_t i) {
    const BrowserSetting& setting = BrowserSettingTable()[i];
    DeleteValue(platform_.registry(), setting.hive, setting.key, setting.value);
  }
  std::string Get(size_t i) {
    const BrowserSetting& setting = BrowserSettingTable()[i];
    return QueryText(platform_.registry(), setting.hive, setting.key, setting.value);
  }
  std::string Default(size_t i) { return DefaultOf(BrowserSettingTable()[i], platform_.machine()); }

  std::string Baselines() { return ReadWholeFile(platform_.files(), Path("QS_BHR.ini")); }
  std::string Verdicts() { return ReadWholeFile(platform_.files(), Path("QS_AB_BHR.ini")); }
  void DeleteFiles() {
    for (const char* name : {"QS_BHR.ini", "QS_AB_BHR.ini"}) {
      IgnoringErrors([&] { platform_.files().Delete(Path(name)); });
    }
  }

 private:
  std::string Path(const char* name) {
    return GetPathWithSlash(platform_.machine().ProgramFolder()) + name;
  }
  Platform& platform_;
};

}  // namespace quarnel
