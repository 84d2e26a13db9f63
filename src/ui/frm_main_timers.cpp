// The timers of the main window.

#include "base/text.h"
#include "ui/frm_main.h"

namespace quarnel {

void frmMain::WireTimers() {
  const auto reporting = [this](Timer& timer, std::string_view label, void (frmMain::*work)()) {
    timer.Tick = [this, label, work] { Reporting(s_.log, label, [&] { (this->*work)(); }); };
  };
  // It only tells the state without signatures; nothing blinks.
  timers.tmrBlink.Tick = [] {};
  timers.tmrAlertEnableDisable.Tick = [this] {
    Reporting(s_.log, "tmrAlertEnableDisable_Timer in frmMain",
              [&] { optionLogic_.RestoreAlertOption(); });
  };
  reporting(timers.tmrStartup, "tmrStartup_Timer in frmMain", &frmMain::tmrStartup_Timer);
  reporting(timers.tmrMemoryInspected, "tmrMemoryInspected_Timer of frmMain",
            &frmMain::tmrMemoryInspected_Timer);
  reporting(timers.tmrPreventChangeHomePage, "tmrPreventChangeHomePage_Timer",
            &frmMain::tmrPreventChangeHomePage_Timer);
  reporting(timers.tmrBHO, "tmrBHO_Timer in frmMain", &frmMain::tmrBHO_Timer);
  reporting(timers.tmrLiveUpadate, "tmrLiveUpadate_Timer of frmMain",
            &frmMain::tmrLiveUpadate_Timer);
  reporting(timers.tmrIsConnectionOk, "tmrIsConnectionOk_Timer of frmMain",
            &frmMain::tmrIsConnectionOk_Timer);
}

void frmMain::MakeTimersEnabledOrDisableAcordingToSetting(bool leaveAlone) {
  if (leaveAlone) return;
  if (!bMainWindowShowing_) {
    timers.tmrMemoryInspected.SetEnabled(options.chkMemorySheild.Checked());
  }
  timers.tmrScheduler.SetEnabled(schedule.chkAutomaticScanYesOrNo.Checked());
  timers.tmrLiveUpadate.SetEnabled(options.chkEnableAutoUpdaterNotifications.Checked());
  timers.tmrStartup.SetEnabled(options.chkStartupShield.Checked());
}

// The guards have not joined the window yet: these three look at nothing.
void frmMain::tmrMemoryInspected_Timer() {}
void frmMain::tmrPreventChangeHomePage_Timer() {}
void frmMain::tmrBHO_Timer() {}

// Until the fifth tick, startup programs are taken in without alerts.
void frmMain::tmrStartup_Timer() {
  constexpr int kFirstTicks = 5;
  if (startupTicks_ < kFirstTicks) ++startupTicks_;
  if (!options.chkStartupShield.Checked() || startupTicks_ < kFirstTicks) return;
  if (bStartupBaselineDone_ && justAfterInstallation_ == "FALSE") return;
  justAfterInstallation_ = "FALSE";
  s_.settings.Save(setting::kJustAfterInstallation, justAfterInstallation_);
  bStartupBaselineDone_ = true;
}

// Counts minutes. The setting is an index into the list of hours and taken for the hours
// themselves, so the wait is an hour shorter than the list shows.
void frmMain::tmrLiveUpadate_Timer() {
  ++minutesSinceCheck_;
  if (minutesSinceCheck_ / 60.0 > Val(s_.settings.GetOther(setting::kAfterHours))) {
    minutesSinceCheck_ = 1;
  }
}

void frmMain::tmrIsConnectionOk_Timer() {
  if (connectionIsOk) connectionTicks_ = 0;
  connectionIsOk = false;
  if (++connectionTicks_ <= 3) return;
  timers.tmrIsConnectionOk.SetEnabled(false);
  connectionTicks_ = 0;
}

}  // namespace quarnel
