#include "engine/pages.h"

#include <algorithm>
#include <array>

namespace quarnel {

namespace {

struct TimerOfSetting {
  Timer& timer;
  bool wanted;
};

std::array<TimerOfSetting, 4> TimersOfSettings(Pages& pages, const MainWindow& window) {
  MainTimers& timers = pages.timers;
  const OptionsPage& options = pages.options;
  return {{{timers.tmrMemoryInspected, window.Showing() ? timers.tmrMemoryInspected.Enabled()
                                                        : options.chkMemorySheild.Checked()},
           {timers.tmrScheduler, pages.schedule.chkAutomaticScanYesOrNo.Checked()},
           {timers.tmrLiveUpadate, options.chkEnableAutoUpdaterNotifications.Checked()},
           {timers.tmrStartup, options.chkStartupShield.Checked()}}};
}

}  // namespace

void MakeTimersEnabledOrDisableAcordingToSetting(Pages& pages, const MainWindow& window) {
  for (const auto& [timer, wanted] : TimersOfSettings(pages, window)) timer.SetEnabled(wanted);
}

bool TimersAreAcordingToSetting(Pages& pages, const MainWindow& window) {
  const auto all = TimersOfSettings(pages, window);
  return std::all_of(all.begin(), all.end(),
                     [](const auto& entry) { return entry.timer.Enabled() == entry.wanted; });
}

}  // namespace quarnel
