#pragma once

#include "core/settings.h"
#include "options/options_page.h"

namespace quarnel {

// Watches the programs that start with the system. Until its fifth tick they are taken in without
// alerts.
class StartupShield {
 public:
  struct Uses {
    const OptionsPage& options;
    Settings& settings;
  };
  explicit StartupShield(const Uses& uses) : u_(uses) {}

  // Whether this is the first run after the installation, as the store has it.
  void LoadJustAfterInstallation();
  // From here on there is a list with which later ones are compared.
  void LoadStartups() { bStartupBaselineDone_ = true; }
  void tmrStartup_Timer();

  bool BaselineDone() const { return bStartupBaselineDone_; }

 private:
  Uses u_;
  bool justAfterInstallation_ = true;
  bool bStartupBaselineDone_ = false;
  int ticks_ = 0;
};

}  // namespace quarnel
