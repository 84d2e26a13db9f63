#pragma once

#include "controls/timer.h"

namespace quarnel {

// The timers of the main window, as designed: interval and whether they start switched on.
struct MainTimers {
  Form& form;
  Timer tmrScheduler{form, "tmrScheduler", Milliseconds(10), true};
  Timer tmrMemoryInspected{form, "tmrMemoryInspected", Milliseconds(10000), true};
  Timer tmrPreventChangeHomePage{form, "tmrPreventChangeHomePage", Milliseconds(10000), true};
  Timer tmrBHO{form, "tmrBHO", Milliseconds(60000), true};
  Timer tmrStartup{form, "tmrStartup", Milliseconds(5000), false};
  Timer tmrLiveUpadate{form, "tmrLiveUpadate", Milliseconds(60000), false};
  Timer tmrAlertEnableDisable{form, "tmrAlertEnableDisable", Milliseconds(1000), true};
  // Only on or off: it tells the state without signatures, and nothing blinks.
  Timer tmrBlink{form, "tmrBlink", Milliseconds(800), true};
  Timer tmrIsConnectionOk{form, "tmrIsConnectionOk", Milliseconds(10000), true};
};

}  // namespace quarnel
