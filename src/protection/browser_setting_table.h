#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/machine.h"

// The settings of the browser that are guarded, as a table.
namespace quarnel {

struct BrowserSetting {
  std::string_view label;     // the text of its row in the list
  std::string_view compared;  // the text of the row by which a comparison finds it
  std::string_view baseline;  // its key among the baselines; also the text that a restore looks for
  std::string_view restore;   // its key among the restore settings
  uint32_t hive;
  std::string_view key;
  std::string_view value;     // the name of the registry value; empty for the key's default value
  std::string_view original;  // what a fresh browser has; empty for the page of the system folder
  std::string_view help;
};

// In the order in which rows are listed. The first two share a label, and of them one is listed.
std::span<const BrowserSetting> BrowserSettingTable();

// What a fresh browser has.
std::string DefaultOf(const BrowserSetting& setting, Machine& machine);

}  // namespace quarnel
