#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "controls/host.h"
#include "core/error_log.h"
#include "core/settings.h"
#include "schedule/schedule_page.h"

namespace quarnel {

// What the calendar asks of the window around its page.
class ScheduleSurroundings {
 public:
  virtual ~ScheduleSurroundings() = default;
  virtual void MakeTimersEnabledOrDisableAcordingToSetting(bool leaveAlone) = 0;
  virtual bool ScanIsRunning() const = 0;
  // Makes the first page the visible one, and starts a scan there as the start button does; returns
  // when the scan is over.
  virtual void ShowFirstPage() = 0;
  virtual void StartScan() = 0;
  virtual void RefreshSystemSummary() = 0;
};

// Starts a scan at a time of day, on one weekday, every day, or once on one date. It works only
// while the program runs, and nothing makes up for a missed second.
class Scheduler {
 public:
  struct Uses {
    SchedulePage& page;
    Timer& tmrScheduler;
    Settings& settings;
    Host& host;
    ErrorLog& log;
    ScheduleSurroundings& surroundings;
  };
  explicit Scheduler(const Uses& uses);

  // Shows what the store holds, and puts it in force.
  void LoadSchedule();
  // Saves what the page shows, and puts it in force. A date or time that is missing is asked for,
  // and nothing is saved.
  void ApplySchedule();
  // The page as it stands when its tab was opened: as stored, nothing to apply.
  void OpenPage();

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
  bool IsDue() const;
  bool StartedJustNow() const;

  void cmdProceed_Click();
  void cmdDefaultSetting_Click();
  void cmbDays_Click();
  void chkAutomaticScanYesOrNo_Click();
  void tmrScheduler_Timer();

  DateTime Today() const;
  DateTime PresentTime() const;
  void Inform(std::string_view text, std::string_view title);

  Uses u_;
  InForce inForce_;
  std::optional<Milliseconds> startedAt_;  // in the clock's ticks
};

}  // namespace quarnel
