#pragma once

#include "core/main_window.h"
#include "engine/main_timers.h"
#include "engine/summary_page.h"
#include "options/options_page.h"
#include "protection/advanced_tools_page.h"
#include "protection/browser_settings_page.h"
#include "recovery/backup_page.h"
#include "recovery/removal_page.h"
#include "scan/results_page.h"
#include "scan/scan_page.h"
#include "schedule/schedule_page.h"
#include "update/update_page.h"

namespace quarnel {

// The pages on which the subsystems work, and the timers beside them, all on one form.
struct Pages {
  Form& form;
  ScanPage scan{form};
  ResultsPage results{form};
  RemovalPage removal{form};
  OptionsPage options{form};
  UpdatePage update{form};
  SchedulePage schedule{form};
  SummaryPage summary{form};
  BackupPage backup{form};
  BrowserSettingsPage browserSettings{form};
  AdvancedToolsPage tools{form};
  MainTimers timers{form};
};

// Sets the timers as the option and schedule pages say; that of the memory shield only while the
// window does not stand open.
void MakeTimersEnabledOrDisableAcordingToSetting(Pages& pages, const MainWindow& window);
// Whether that would change nothing.
bool TimersAreAcordingToSetting(Pages& pages, const MainWindow& window);

}  // namespace quarnel
