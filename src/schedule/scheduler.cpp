#include "schedule/scheduler.h"

#include <array>

#include "base/date_time.h"
#include "base/text.h"

namespace quarnel {
namespace {

// The entries of cmbDays: the weekdays from Monday on, and these.
enum Day { kMonday = 0, kSunday = 6, kDaily = 7, kDateAndTime = 8, kNoDay = 9 };

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

// A picker without a value is stored as the reader's word for none.
void SavePicker(Settings& settings, const SettingKey<setting::Date>& key,
                const DatePicker& picker) {
  if (picker.Value()) return settings.Save(key, *picker.Value());
  settings.Save(key.ReadAs<setting::Text>(key.fallback), key.fallback);
}

}  // namespace

Scheduler::Scheduler(const Uses& uses) : u_(uses) {
  SchedulePage& page = u_.page;
  page.cmbDays.SetItems({"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday",
                         "Sunday", "Daily", "Date & Time"});
  ShowButtons(false);
  const auto reporting = [this](std::string_view label, void (Scheduler::*procedure)()) {
    return [this, label, procedure] { Reporting(u_.log, label, [&] { (this->*procedure)(); }); };
  };
  page.cmdProceed.Click = reporting("cmdProceed_Click in frmMain", &Scheduler::cmdProceed_Click);
  page.cmdDefaultSetting.Click =
      reporting("cmdDefaultSchedule_Click in frmMain", &Scheduler::cmdDefaultSetting_Click);
  page.cmbDays.Click = reporting("cmbDays_Click in frmMain", &Scheduler::cmbDays_Click);
  page.chkAutomaticScanYesOrNo.Click = reporting("chkAutomaticScanYesOrNo_Click in frmMain",
                                                 &Scheduler::chkAutomaticScanYesOrNo_Click);
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
    if (u_.settings.Get(setting::kTime) == setting::kTime.fallback) {
      u_.settings.Save(setting::kTime, DateFrom(kFirstTime));
    }
    if (u_.settings.Get(setting::kAppliedDay) == setting::kAppliedDay.fallback) {
      page.dtpScheduleTime.SetValue(DateFrom(u_.settings.Get(setting::kTime)));
      page.chkAutomaticScanYesOrNo.SetValue(u_.settings.Get(setting::kAutomaticScan));
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
  if (const std::string date = u_.settings.Get(setting::kDate); date == setting::kDate.fallback) {
    clear(page.dtpScheduleDate, Today());
  } else {
    page.dtpScheduleDate.SetValue(DateFrom(date));
  }
  if (const std::string time = u_.settings.Get(setting::kTime); time == setting::kTime.fallback) {
    u_.settings.Save(setting::kTime, PresentTime());
    clear(page.dtpScheduleTime, PresentTime());
  } else {
    page.dtpScheduleTime.SetValue(DateFrom(time));
  }
  const int day = u_.settings.Get(setting::kDay);
  page.cmbDays.SetListIndex(day);
  page.chkAutomaticScanYesOrNo.SetValue(u_.settings.Get(setting::kAutomaticScan));
  // A box that has just lost its tick has chosen the first day.
  page.cmbDays.SetListIndex(day);
}

void Scheduler::RefreshFields() {
  inForce_.mScheduleDay = ToInteger(static_cast<double>(u_.settings.Get(setting::kDay)));
  inForce_.mScheduleTime = u_.settings.Get(setting::kTime);
  inForce_.mScheduleDate = u_.settings.Get(setting::kDate);
}

void Scheduler::ApplySchedule() {
  Reporting(u_.log, "ApplySchedule in frmMain", [&] {
    SchedulePage& page = u_.page;
    if (page.cmbDays.ListIndex() == kDateAndTime) {
      const auto missing = [&](const DatePicker& picker, std::string_view what) {
        if (picker.Value()) return false;
        messages_.Inform("Please define the particular " + std::string(what) +
                         " when you want to scan.");
        return true;
      };
      if (missing(page.dtpScheduleDate, "date") || missing(page.dtpScheduleTime, "time")) return;
    }
    u_.settings.Save(setting::kAutomaticScan, page.chkAutomaticScanYesOrNo.Value());
    u_.settings.Save(setting::kDay, page.cmbDays.ListIndex());
    SavePicker(u_.settings, setting::kTime, page.dtpScheduleTime);
    SavePicker(u_.settings, setting::kDate, page.dtpScheduleDate);
    RefreshFields();
    u_.tmrScheduler.SetEnabled(u_.settings.Get(setting::kAutomaticScan) == 1);
    page.cmdDefaultSetting.SetVisible(false);
  });
}

// The box appears even where a missing date or time was asked for.
void Scheduler::cmdProceed_Click() {
  ApplySchedule();
  u_.page.cmdProceed.SetVisible(false);
  messages_.Inform("Schedule settings have been saved.", "Schedule Settings");
  u_.window.RefreshSummary();
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
  GiveTime();
  if (day == kDateAndTime && !page.dtpScheduleDate.Value()) page.dtpScheduleDate.SetValue(Today());
  ShowButtons(true);
}

// A schedule without a time would never run.
void Scheduler::GiveTime() {
  DatePicker& time = u_.page.dtpScheduleTime;
  if (time.Enabled() && !time.Value()) time.SetValue(PresentTime());
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
    GiveTime();
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

bool Scheduler::StartedJustNow() const {
  if (!startedAt_) return false;
  const Milliseconds since = u_.host.clock().Ticks() - *startedAt_;
  return since >= Milliseconds(0) && since < std::chrono::seconds(1);
}

bool Scheduler::TakeDueScan() {
  if (!IsDue() || StartedJustNow()) return false;
  startedAt_ = u_.host.clock().Ticks();
  return true;
}

// The day is left to the tick itself.
Milliseconds Scheduler::UntilScheduledSecond() const {
  using std::chrono::days, std::chrono::floor, std::chrono::seconds;
  const std::optional<DateTime> scheduled = ParseDate(inForce_.mScheduleTime);
  if (!scheduled) return days(1);
  const DateTime now = u_.host.clock().Now();
  const auto second = floor<seconds>(*scheduled - floor<days>(*scheduled));
  const Milliseconds until = second - (now - floor<days>(now));
  if (until > Milliseconds(0)) return until;
  return until > -seconds(1) ? Milliseconds(0) : until + days(1);
}

DateTime Scheduler::Today() const {
  return std::chrono::floor<std::chrono::days>(u_.host.clock().Now());
}

// The time of day alone, without the day's date.
DateTime Scheduler::PresentTime() const { return DateFrom(TimeText(u_.host.clock().Now())); }

}  // namespace quarnel
