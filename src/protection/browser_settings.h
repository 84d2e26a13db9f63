#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/inifile.h"
#include "core/main_window.h"
#include "core/services.h"
#include "protection/browser_setting_table.h"
#include "protection/browser_settings_page.h"

namespace quarnel {

// A change of one setting, as the user is asked about it.
struct PendingBrowserChange {
  std::string label;
  std::string newValue;
  std::string defaultValue;
  std::string storedValue;  // the baseline
  uint32_t hive = 0;
  std::string key;
  std::string valueName;
};

// What is to become of changes to one address, by the words of their file.
namespace url_verdict {
inline constexpr std::string_view kAllow = "ALLOW";
inline constexpr std::string_view kBlock = "BLOCK";
}  // namespace url_verdict

// The guard of the browser's settings, and their page. What a setting was when it was first seen is
// its baseline; a comparison tells what differs from it. Baselines and the verdicts on addresses
// stand in two files of the program's folder.
class BrowserSettings {
 public:
  struct Uses {
    BrowserSettingsPage& page;
    Services services;
    MainWindow& window;
  };
  explicit BrowserSettings(const Uses& uses);

  // Fills the list of settings, with the first one in full beside it. A setting that has no
  // baseline yet gets what the registry holds; one whose baseline is empty is not listed.
  void LoadBrowserSettings();
  // Fills the list of addresses that have a verdict.
  void LoadAllowedBlockedURLs();

  // Compares the listed settings with their baselines, in their order, and handles the first one
  // that has changed.
  void CheckBrowserSettings();
  // Undoes a change to a blocked address, lets one to an allowed address be, and asks about any
  // other. Nothing as long as the change that was handled last changes nothing, letter case folded:
  // the first one of a run never gets further.
  void HandleBrowserSettingChange(PendingBrowserChange change);

  // The change that was handled last, which the alert is about. Beside the operation above only
  // MoveBaseline writes it: it calls the home page by its baseline's name.
  PendingBrowserChange& Pending() { return pending_; }
  // What the alert's buttons do. The new value becomes the baseline; the stored value goes back
  // into the registry; the new value's address gets a verdict.
  void MoveBaseline();
  void Undo(const PendingBrowserChange& change);
  void Remember(std::string_view url, std::string_view verdict);

  // All settings of the table as they stand. Writes nothing.
  struct State {
    std::string name;
    std::string now;
    std::string baseline;  // empty where none was captured
    std::string original;  // what a fresh browser has
  };
  std::vector<State> States();

 private:
  ListView& ShownList();
  void ShowRestoreList(bool restore);
  void ItemClick(size_t row);
  void ShowDetails();
  void imgRestore_Click();
  void lblChangeRestoreURL_Click();
  void imgRemoveAllowRestoreURLs_Click();

  cInifile IniFile(std::string_view name, std::string_view section) const;
  cInifile Baselines() const;
  cInifile Verdicts() const;
  std::vector<std::string> ReadBaselines(std::string_view absent) const;
  void WriteBrowserValue(std::string_view newValue, uint32_t hive, std::string_view key,
                         std::string_view valueName);

  Uses u_;
  PendingBrowserChange pending_;
};

}  // namespace quarnel
