#pragma once

#include <cstddef>

#include "protection/browser_settings_page.h"

namespace quarnel {

// The page of the browser's settings at work: which list shows, and what stands beside it.
class BrowserSettings {
 public:
  explicit BrowserSettings(BrowserSettingsPage& page);

  // Shows the first setting in full, if there is any.
  void Load();

 private:
  ListView& ShownList();
  void ShowRestoreList(bool restore);
  void ItemClick(size_t row);

  BrowserSettingsPage& page_;
};

}  // namespace quarnel
