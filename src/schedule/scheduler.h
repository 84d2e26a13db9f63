#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "controls/host.h"
#include "core/error_log.h"
#include "core/main_window.h"
#include "core/messages.h"
#include "core/settings.h"
#include "schedule/schedule_page.h"

namespace quarnel {

// Tells when a scan is due: at a time of day, on one weekday, every day, or once on one date. It
// works only while the program runs, and nothing makes up for a missed second.
class Scheduler {
 public:
  struct Uses {
    SchedulePage& page;
    Timer& tmrScheduler;
    Settings& settings;
    Host& host;
    ErrorLog& log;
    MainWindow& window;
  };
  explicit Scheduler(const Uses& uses);

  // Shows what the store holds, and puts it in force.
  void LoadSchedule();
  // Saves what the page shows, and puts it in force. A date or time that is missing is asked for,
  // and nothing is saved.
  void ApplySchedule();
  // The page as it stands when its tab was opened: as stored, nothing to apply.
  void OpenPage();
  // Whether a scan is due now. Once in its second: the timer ticks many times in it, and a scan may
  // be over before its end.
  bool TakeDueScan();
  // How long it is until the second in which a scan may be due; 0 within it.
  Milliseconds UntilScheduledSecond() const;

 private:
  // The schedule in force. The timer compares with this, and never looks at the controls.
  struct InForce {
    int16_t mScheduleDay = 0;
    std::string mScheduleTime;
    std::string mScheduleDate;
  };

  void LoadAppliedSchedule();
  void RefreshFields();
  void ShowButtons(bool show);
  void PickerCleared(const DatePicker& picker);
  void EnablePickersByDay();
  void GiveTime();
  bool IsDue() const;
  bool StartedJustNow() const;

  void cmdProceed_Click();
  void cmdDefaultSetting_Click();
  void cmbDays_Click();
  void chkAutomaticScanYesOrNo_Click();

  DateTime Today() const;
  DateTime PresentTime() const;

  Uses u_;
  Messages messages_{u_.host, u_.settings};
  InForce inForce_;
  std::optional<Milliseconds> startedAt_;  // in the clock's ticks
};

}  // namespace quarnel
