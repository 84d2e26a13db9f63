#include "schedule/scheduler.h"

#include <array>

#include "base/date_time.h"
#include "base/text.h"

namespace quarnel {
namespace {

// The entries of cmbDays: the weekdays from Monday on, and these.
enum Day { kMonday = 0, kSunday = 6, kDaily = 7, kDateAndTime = 8, kNoDay = 9 };

constexpr std::string_view kNotSet = "Null";
constexpr std::string_view kNeverApplied = "None";
constexpr std::string_view kFirstTime = "12:00:00 AM";

constexpr std::string_view kDatePattern = "dd/MM/yyyy";
constexpr std::string_view kTimePattern = "hh:mm:ss";

DateTime DateFrom(std::string_view text) {
  const std::optional<DateTime> moment = ParseDate(text);
  if (!moment) throw RuntimeError(ErrorNumber::kTypeMismatch);
  return *moment;
}

// A stored text in a format; what is no date stays as it is.
std::string Formatted(const std::string& text, std::string_view pattern) {
  const std::optional<DateTime> moment = ParseDate(text);
  return moment ? FormatDate(*moment, pattern) : text;
}

std::string StoredText(const DatePicker& picker) {
  return picker.Value() ? GeneralDateText(*picker.Value()) : std::string(kNotSet);
}

}  // namespace

Scheduler::Scheduler(const Uses& uses) : u_(uses) {
  SchedulePage& page = u_.page;
  const auto reporting = [this](std::string_view label, void (Scheduler::*procedure)()) {
    return [this, label, procedure] { Reporting(u_.log, label, [&] { (this->*procedure)(); }); };
  };
  page.cmdProceed.Click = reporting("cmdProceed_Click in frmMain", &Scheduler::cmdProceed_Click);
  page.cmdDefaultSetting.Click =
      reporting("cmdDefaultSchedule_Click in frmMain", &Scheduler::cmdDefaultSetting_Click);
  page.cmbDays.Click = reporting("cmbDays_Click in frmMain", &Scheduler::cmbDays_Click);
  page.chkAutomaticScanYesOrNo.Click = reporting("chkAutomaticScanYesOrNo_Click in frmMain",
                                                 &Scheduler::chkAutomaticScanYesOrNo_Click);
  u_.tmrScheduler.Tick = reporting("tmrSchedule_Timer in frmMain", &Scheduler::tmrScheduler_Timer);
  page.lblEnableAutoScan.Click = [this] {
    Reporting(u_.log, "lblEnableAutoScan_Click in frmMain",
              [&] { u_.page.chkAutomaticScanYesOrNo.SetValue(1); });
  };
  const auto wire = [this](DatePicker& picker, std::string_view label) {
    picker.Change = [this] { ShowButtons(true); };
    picker.Click = [this, &picker, label] {
      Reporting(u_.log, label, [&] { PickerCleared(picker); });
    };
  };
  wire(page.dtpScheduleDate, "dtpScheduleDate_Change in frmMain");
  wire(page.dtpScheduleTime, "dtpScheduleTime_Click in frmMain");
}

void Scheduler::LoadSchedule() {
  Reporting(u_.log, "LoadSchedule in frmMain", [&] {
    SchedulePage& page = u_.page;
    if (u_.settings.Get(setting::kTime) == kNotSet) {
      u_.settings.Save(setting::kTime, kFirstTime);
      page.dtpScheduleTime.SetValue(DateFrom(kFirstTime));
    }
    if (u_.settings.GetOther(setting::kDay) == kNeverApplied) {
      page.chkAutomaticScanYesOrNo.SetValue(ValLong(u_.settings.Get(setting::kAutomaticScan)));
      page.cmbDays.SetListIndex(kDaily);
    } else {
      LoadAppliedSchedule();
    }
    page.dtpScheduleDate.SetEnabled(page.cmbDays.ListIndex() == kDateAndTime);
    RefreshFields();
  });
}

void Scheduler::LoadAppliedSchedule() {
  SchedulePage& page = u_.page;
  const auto clear = [](DatePicker& picker, DateTime shownBefore) {
    picker.SetValue(shownBefore);
    picker.SetValue(std::nullopt);
    picker.SetEnabled(false);
  };
  if (const std::string date = u_.settings.Get(setting::kDate); date == kNotSet) {
    clear(page.dtpScheduleDate, Today());
  } else {
    page.dtpScheduleDate.SetValue(DateFrom(date));
  }
  if (const std::string time = u_.settings.Get(setting::kTime); time == kNotSet) {
    u_.settings.Save(setting::kTime, GeneralDateText(PresentTime()));
    clear(page.dtpScheduleTime, PresentTime());
  } else {
    page.dtpScheduleTime.SetValue(DateFrom(time));
  }
  const int day = ValLong(u_.settings.Get(setting::kDay));
  page.cmbDays.SetListIndex(day);
  page.chkAutomaticScanYesOrNo.SetValue(ValLong(u_.settings.Get(setting::kAutomaticScan)));
  // A box that has just lost its tick has chosen the first day.
  page.cmbDays.SetListIndex(day);
}

void Scheduler::RefreshFields() {
  inForce_.mScheduleDay = ToInteger(Val(u_.settings.Get(setting::kDay)));
  inForce_.mScheduleTime = u_.settings.Get(setting::kTime);
  inForce_.mScheduleDate = u_.settings.Get(setting::kDate);
}

void Scheduler::ApplySchedule() {
  Reporting(u_.log, "ApplySchedule in frmMain", [&] {
    SchedulePage& page = u_.page;
    if (page.cmbDays.ListIndex() == kDateAndTime) {
      const auto missing = [&](const DatePicker& picker, std::string_view what) {
        if (picker.Value()) return false;
        Inform("Please define the particular " + std::string(what) + " when you want to scan.",
               u_.settings.ApplicationName());
        return true;
      };
      if (missing(page.dtpScheduleDate, "date") || missing(page.dtpScheduleTime, "time")) return;
    }
    u_.settings.Save(setting::kAutomaticScan, page.chkAutomaticScanYesOrNo.ValueText());
    u_.settings.Save(setting::kDay, std::to_string(page.cmbDays.ListIndex()));
    u_.settings.Save(setting::kTime, StoredText(page.dtpScheduleTime));
    u_.settings.Save(setting::kDate, StoredText(page.dtpScheduleDate));
    RefreshFields();
    u_.tmrScheduler.SetEnabled(Val(u_.settings.Get(setting::kAutomaticScan)) == 1);
    page.cmdDefaultSetting.SetVisible(false);
  });
}

// The box appears even where a missing date or time was asked for.
void Scheduler::cmdProceed_Click() {
  ApplySchedule();
  u_.page.cmdProceed.SetVisible(false);
  Inform("Schedule settings have been saved.", "Schedule Settings");
  u_.surroundings.RefreshSystemSummary();
}

void Scheduler::cmdDefaultSetting_Click() {
  LoadSchedule();
  ShowButtons(false);
}

void Scheduler::OpenPage() {
  LoadSchedule();
  ShowButtons(false);
  u_.page.dtpScheduleDate.SetMode({.checkBox = true});
  u_.page.dtpScheduleTime.SetMode({.checkBox = true, .upDown = true});
}

void Scheduler::ShowButtons(bool show) {
  for (Button* button : {&u_.page.cmdProceed, &u_.page.cmdDefaultSetting}) {
    button->SetVisible(show);
    if (show) button->SetEnabled(true);
  }
}

void Scheduler::cmbDays_Click() {
  SchedulePage& page = u_.page;
  const int day = page.cmbDays.ListIndex();
  EnablePickersByDay();
  if (page.dtpScheduleTime.Enabled() && !page.dtpScheduleTime.Value()) {
    page.dtpScheduleTime.SetValue(PresentTime());
  }
  if (day == kDateAndTime && !page.dtpScheduleDate.Value()) page.dtpScheduleDate.SetValue(Today());
  ShowButtons(true);
}

void Scheduler::EnablePickersByDay() {
  const int day = u_.page.cmbDays.ListIndex();
  u_.page.dtpScheduleDate.SetEnabled(day == kDateAndTime);
  u_.page.dtpScheduleTime.SetEnabled(day >= kMonday && day < kNoDay);
}

void Scheduler::chkAutomaticScanYesOrNo_Click() {
  SchedulePage& page = u_.page;
  if (page.chkAutomaticScanYesOrNo.Checked()) {
    u_.tmrScheduler.SetEnabled(true);
    page.cmbDays.SetEnabled(true);
    if (page.cmbDays.ListIndex() == kNoDay) page.cmbDays.SetListIndex(kDaily);
    if (page.cmbDays.ListIndex() < kDateAndTime) {
      page.dtpScheduleDate.SetEnabled(false);
      page.dtpScheduleTime.SetEnabled(true);
    }
  } else {
    page.cmbDays.SetListIndex(kMonday);
    page.cmbDays.SetEnabled(false);
    page.dtpScheduleDate.SetEnabled(false);
    page.dtpScheduleTime.SetEnabled(false);
    u_.tmrScheduler.SetEnabled(false);
  }
  ShowButtons(true);
}

// A picker without a value switches the schedule off.
void Scheduler::PickerCleared(const DatePicker& picker) {
  if (picker.Value()) return;
  u_.page.cmbDays.SetListIndex(kMonday);
  u_.page.chkAutomaticScanYesOrNo.SetValue(0);
}

bool Scheduler::IsDue() const {
  static constexpr std::array<std::string_view, 7> kDayNames = {
      "MONDAY", "TUESDAY", "WEDNESDAY", "THURSDAY", "FRIDAY", "SATURDAY", "SUNDAY"};
  const DateTime now = u_.host.clock().Now();
  const int day = inForce_.mScheduleDay;
  if (day >= kMonday && day <= kSunday) {
    if (!EqualText(FormatDate(now, "dddd"), kDayNames[static_cast<size_t>(day)])) return false;
  } else if (day == kDateAndTime) {
    if (FormatDate(now, kDatePattern) != Formatted(inForce_.mScheduleDate, kDatePattern)) {
      return false;
    }
  } else if (day != kDaily) {
    return false;
  }
  return FormatDate(now, kTimePattern) == Formatted(inForce_.mScheduleTime, kTimePattern);
}

// The timer ticks many times in the due second, and a scan may be over before its end.
bool Scheduler::StartedJustNow() const {
  if (!startedAt_) return false;
  const Milliseconds since = u_.host.clock().Ticks() - *startedAt_;
  return since >= Milliseconds(0) && since < std::chrono::seconds(1);
}

void Scheduler::tmrScheduler_Timer() {
  u_.surroundings.MakeTimersEnabledOrDisableAcordingToSetting(true);
  // A scan that runs already is not entered a second time.
  if (IsDue() && !StartedJustNow() && !u_.surroundings.ScanIsRunning()) {
    startedAt_ = u_.host.clock().Ticks();
    u_.surroundings.ShowFirstPage();
    u_.surroundings.StartScan();
  }
  u_.surroundings.MakeTimersEnabledOrDisableAcordingToSetting(false);
}

DateTime Scheduler::Today() const {
  return std::chrono::floor<std::chrono::days>(u_.host.clock().Now());
}

// The time of day alone, without the day's date.
DateTime Scheduler::PresentTime() const { return DateFrom(TimeText(u_.host.clock().Now())); }

void Scheduler::Inform(std::string_view text, std::string_view title) {
  u_.host.MsgBox(
      {.text = std::string(text), .title = std::string(title), .icon = MessageIcon::kInformation});
}

}  // namespace quarnel
