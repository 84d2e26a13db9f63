#include "protection/startup_shield.h"

namespace quarnel {

void StartupShield::LoadJustAfterInstallation() {
  justAfterInstallation_ = u_.settings.Get(setting::kJustAfterInstallation);
}

void StartupShield::tmrStartup_Timer() {
  constexpr int kFirstTicks = 5;
  if (ticks_ < kFirstTicks) ++ticks_;
  if (!u_.options.chkStartupShield.Checked() || ticks_ < kFirstTicks) return;
  if (bStartupBaselineDone_ && !justAfterInstallation_) return;
  justAfterInstallation_ = false;
  u_.settings.Save(setting::kJustAfterInstallation, justAfterInstallation_);
  bStartupBaselineDone_ = true;
}

}  // namespace quarnel
