#pragma once

#include "core/main_window.h"
#include "core/services.h"
#include "options/options.h"

namespace quarnel {

// The shield against components that download themselves: its box and its two buttons on the option
// page. The work is done by the two dialogs.
class ActiveXShield {
 public:
  struct Uses {
    OptionsPage& page;
    const Options& options;
    Services services;
    MainWindow& window;
    Timer& tmrBlink;
  };
  explicit ActiveXShield(const Uses& uses);

 private:
  void chkSelfDownloadingActivex_Click();
  // Works through the box's dialog, or asks for the file that is missing.
  void Switch(bool on);

  Uses u_;
};

}  // namespace quarnel
