#include "engine/summary.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/startup.h"

namespace quarnel {
namespace {

enum Row : size_t { kLastScan, kLastResults, kSchedule, kProtection, kDefinitions, kUpdater };

constexpr std::array<std::string_view, 6> kRowNames = {
    "Last Spyware Scan",    "Last Spyware Scan Results",       "Spyware Scan Schedule",
    "Real-time Protection", "Last Spyware Definitions Update", "Auto-Updater Notification"};

constexpr std::string_view kNoThreats = "No threats detected";
constexpr std::string_view kInactive = "In-active";

}  // namespace

Summary::Summary(const Uses& uses) : u_(uses) {
  u_.page.imgUpdatesAvailable.SetVisible(false);
  u_.page.lblUpdatesAvailable.SetVisible(false);
  u_.page.lblUpdatesAvailable.SetToolTip("Click to download the latest updates.");
}

void Summary::CreateBalloons() {
  for (size_t row = 0; row < balloons_.size(); ++row) {
    Label& label = u_.page.rows[row].lblSystemSummaryLabel;
    balloons_[row].SetLook({.style = ToolTipLook::Style::kBalloon,
                            .icon = ToolTipLook::Icon::kInformation,
                            .title = label.Caption(),
                            .tipText = "Text"});
    balloons_[row].Create(label);
    label.MouseMove = [this, row] { balloons_[row].SetTipText(TipText(row)); };
  }
}

std::string Summary::TipText(size_t row) const {
  const std::string& value = u_.page.rows[row].lblSystemSummaryValue.Caption();
  const std::string breaks = "\r\n\r\n";
  switch (row) {
    case kLastScan:
      return "The last scan run was on " + value + "." + breaks +
             "In order to keep your computer free of spyware it is recommended that you run a "
             "spyware scan at least every 5 days either manually or using the spyware scan "
             "scheduler.";
    case kLastResults:
      return value == kNoThreats ? value + "." : "Scan ran on: " + value + ".";
    case kSchedule:
      return "Your spyware scan schedule is " +
             (value == kInactive ? value : "set to run at " + value) + "." + breaks +
             "Use the scheduled spyware scan to check and remove spyware on a regular basis.";
    case kProtection:
      return value + " of 3 Security Agents are currently active." + breaks +
             "The Security Agents help provide real-time protection against known spyware and "
             "other malicious threats attacking your computer.";
    case kDefinitions:
      return value == setting::kProgramUpdated.fallback
                 ? "Your spyware deffinitions have not been updated yet."
                 : "Your spyware deffinitions have been updated on " + value + ".";
    default:
      return "AutoUpdater is currently " + value + ".";
  }
}

void Summary::RefreshSystemSummary() {
  u_.page.lblSignatureVersion.SetCaption("Signature version: " + SignatureVersion(u_.settings));
  u_.page.lblApplicationVersion.SetCaption("Application version: " + RunningVersion(u_.settings));
  Reset();
  const std::string start = u_.settings.Get(setting::kScanStart);
  ShowLastScan(start);
  ShowLastResults(start != setting::kScanStart.fallback);
  ShowSchedule();
  ShowProtection();
  ShowDefinitions();
  ShowUpdater();
}

void Summary::Reset() {
  for (size_t i = 0; i < kRowNames.size(); ++i) {
    u_.page.rows[i].lblSystemSummaryLabel.SetCaption(kRowNames[i]);
    ShowGood(i, "");
  }
  u_.page.lblSummaryTitle.SetCaption("Your computer is free of known spyware.");
  u_.page.lblSummaryTitle.SetForeColour(Colour::kHighlight);
  ShowPicture(true);
}

void Summary::ShowGood(size_t row, std::string_view value) { Show(row, value, true); }

void Summary::ShowBad(size_t row, std::string_view value) {
  Show(row, value, false);
  ShowPicture(false);
}

void Summary::Show(size_t row, std::string_view value, bool good) {
  SummaryRow& line = u_.page.rows[row];
  line.lblSystemSummaryValue.SetCaption(value);
  line.lblSystemSummaryValue.SetForeColour(good ? Colour::kBlack : Colour::kRed);
  line.imgSystemSummaryBigSmallRed.SetVisible(!good);
  line.imgSystemSummaryBigSmallBlue.SetVisible(good);
}

void Summary::ShowPicture(bool good) {
  u_.page.imgSystemSummaryBigLogoRed.SetVisible(!good);
  u_.page.imgSystemSummaryBigLogoBlue.SetVisible(good);
}

void Summary::RequireAttention() {
  u_.page.lblSummaryTitle.SetCaption("The item(s) marked in red require your attention.");
  u_.page.lblSummaryTitle.SetForeColour(Colour::kRed);
}

void Summary::ShowLastScan(const std::string& start) {
  if (start == setting::kScanStart.fallback) {
    ShowBad(kLastScan, start);
    u_.page.lblSummaryTitle.SetForeColour(Colour::kRed);
    return;
  }
  const auto moment = ParseDate(start);
  if (!moment) throw RuntimeError(ErrorNumber::kTypeMismatch);
  ShowGood(kLastScan, FormatDate(*moment, "mmm dd, yyyy at h:nn:ss AMPM"));
}

void Summary::ShowLastResults(bool scanned) {
  const size_t count = u_.results.lvwRegistryEntriesFound.Count() +
                       u_.results.lvwTrackingCookieObjectrecognized.Count() +
                       u_.results.lvwFilesToBeDeleted.Count();
  // What was not scanned is not called clean.
  const bool whole = u_.unread.ScanWasWhole();
  if (count == 0 && scanned && whole) return ShowGood(kLastResults, kNoThreats);
  ShowBad(kLastResults, count > 0 ? std::to_string(count) + " threats detected"
                        : whole   ? "N/A"
                                  : "Not all was scanned");
  RequireAttention();
}

std::string Summary::ScheduleText() const {
  const SchedulePage& schedule = u_.schedule;
  std::string text;
  if (schedule.dtpScheduleDate.Value() && schedule.dtpScheduleDate.Enabled()) {
    text += FormatDate(*schedule.dtpScheduleDate.Value(), "mmm dd, yyyy") + " ";
  }
  if (schedule.dtpScheduleTime.Value() && schedule.dtpScheduleTime.Enabled()) {
    text += text.empty() ? "At " : "at ";
    text += FormatDate(*schedule.dtpScheduleTime.Value(), "hh:nn:ss AMPM") + " ";
  }
  const std::string day = schedule.cmbDays.Text();
  if (day == "Date & Time") return text;
  return text + (day == "Daily" ? day : "Every " + day);
}

void Summary::ShowSchedule() {
  if (u_.schedule.chkAutomaticScanYesOrNo.Checked()) return ShowGood(kSchedule, ScheduleText());
  ShowBad(kSchedule, kInactive);
  RequireAttention();
}

// Each shield that is on raises the number, and brings its own denominator: four in a row read
// "4 of 4", the first three "3 of 3". Icon and picture stay out of it.
void Summary::ShowProtection() {
  Label& value = u_.page.rows[kProtection].lblSystemSummaryValue;
  value.SetCaption("0 of 4");
  value.SetForeColour(Colour::kRed);
  const auto count = [&](const CheckBox& shield, std::string_view denominator) {
    if (!shield.Checked()) return;
    value.SetCaption(std::to_string(ValLong(value.Caption()) + 1) + std::string(denominator));
    value.SetForeColour(Colour::kBlack);
  };
  count(u_.options.chkDisplayHijakRestoreAlerts, " of 3");
  count(u_.options.chkSelfDownloadingActivex, " of 3");
  count(u_.options.chkMemorySheild, " of 3");
  count(u_.options.chkStartupShield, " of 4");
}

void Summary::ShowDefinitions() {
  const std::string& updated = u_.options.lblLastUpdateDefinationDate.Caption();
  if (updated == setting::kProgramUpdated.fallback) {
    ShowBad(kDefinitions, updated);
  } else {
    ShowGood(kDefinitions, updated);
  }
}

void Summary::ShowUpdater() {
  if (u_.settings.Get(setting::kNotification)) return ShowGood(kUpdater, "Active");
  ShowBad(kUpdater, kInactive);
  RequireAttention();
}

}  // namespace quarnel
