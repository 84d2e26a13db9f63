#include "options/options.h"

#include "base/text.h"
#include "core/page_moment.h"
#include "core/paths.h"
#include "core/product.h"
#include "scan/hard_drives.h"

namespace quarnel {
namespace {

constexpr std::string_view kRunKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";

}  // namespace

Options::Options(const Uses& uses) : u_(uses) {
  std::vector<std::string> hours;
  for (int hour = 1; hour <= 23; ++hour) hours.push_back(std::to_string(hour));
  u_.page.cmbHours.SetItems(std::move(hours));
  WireScanOptions();
  WireShields();
  WireStartAndUpdate();
  WireClosing();
  ReportFailures();
}

void Options::ReportFailures() {
  const auto wrap = [this](auto&... controls) {
    const auto wrapOne = [this](auto& control) {
      control.Click = [this, label = control.Name() + "_Click in frmMain",
                       click = std::move(control.Click)] { Reporting(u_.log, label, click); };
    };
    (wrapOne(controls), ...);
  };
  OptionsPage& page = u_.page;
  wrap(page.chkScanRegitry, page.chkScanMemory, page.chkScanCookies, page.chkDeepScan,
       page.chkMemorySheild, page.chkStartupShield, page.chkDisplayHijakRestoreAlerts,
       page.chkAlertsBlocksSpywareAdware, page.chkReportLorrimesh, page.chkRunAtStartup,
       page.chkMinimizeToTrayWindowAtStartup, page.chkEnableAutoUpdaterNotifications, page.cmbHours,
       page.optOnClose0, page.optOnClose1, page.optCloseOptions0, page.optCloseOptions1,
       page.optCloseOptions2, page.optShowAlways, page.optCloseAllIEAndDonotShowIfFuture,
       page.optSkipClosingAndDonotShow, page.chkStrict, u_.results.chkCreateRestore,
       u_.results.chkDoNotShowIgnoredItem);
}

void Options::WireScanOptions() {
  const auto savesState = [this](CheckBox& box, const auto& key) {
    box.Click = [this, &box, &key] { u_.settings.Save(key, box.Value()); };
  };
  savesState(u_.page.chkScanRegitry, setting::kScanRegistry);
  savesState(u_.page.chkScanMemory, setting::kSweepMemory);
  savesState(u_.page.chkScanCookies, setting::kScanCookies);
  savesState(u_.page.chkDeepScan, setting::kDeepScan);
  savesState(u_.page.chkDisplayHijakRestoreAlerts, setting::kDisplayHijakRestoreAlerts);
  savesState(u_.page.chkReportLorrimesh, setting::kReportLorrimesh);
  savesState(u_.page.chkStrict, setting::kStrict);
  const auto savesYesNo = [this](CheckBox& box, const SettingKey<setting::YesNo>& key) {
    box.Click = [this, &box, &key] { u_.settings.Save(key, box.Checked()); };
  };
  savesYesNo(u_.results.chkCreateRestore, setting::kRestorePoint);
  savesYesNo(u_.results.chkDoNotShowIgnoredItem, setting::kDoNotShowIgnoredItem);
  u_.scan.lvwHardDrives.ItemCheck = [this](size_t) {
    lvwHardDrives_ItemCheck(u_.scan, u_.settings);
  };
}

void Options::WireShields() {
  OptionsPage& page = u_.page;
  page.chkMemorySheild.Click = [this] {
    u_.settings.Save(setting::kMemorySheildOn, u_.page.chkMemorySheild.Value());
    u_.tmrMemoryInspected.SetEnabled(u_.page.chkMemorySheild.Checked());
    u_.window.RefreshSummary();
  };
  page.chkStartupShield.Click = [this] {
    u_.settings.Save(setting::kStartupShield, u_.page.chkStartupShield.Value());
    u_.tmrStartup.SetEnabled(u_.page.chkStartupShield.Checked());
  };
  page.chkAlertsBlocksSpywareAdware.Click = [this] {
    rememberedAlert_ = u_.page.chkAlertsBlocksSpywareAdware.Value();
    u_.window.RefreshSummary();
  };
}

void Options::WireStartAndUpdate() {
  OptionsPage& page = u_.page;
  page.chkRunAtStartup.Click = [this] {
    const bool on = u_.page.chkRunAtStartup.Checked();
    u_.settings.Save(setting::kRunAtStartup, u_.page.chkRunAtStartup.Value());
    if (!loading_ || loadingRegisters_) WriteRunValue(u_.registry, u_.machine, on);
    u_.page.chkMinimizeToTrayWindowAtStartup.SetEnabled(on);
  };
  page.chkMinimizeToTrayWindowAtStartup.Click = [this] {
    u_.settings.Save(setting::kMinimizeAtStartup, u_.page.chkMinimizeToTrayWindowAtStartup.Value());
  };
  page.chkEnableAutoUpdaterNotifications.Click = [this] {
    const bool on = u_.page.chkEnableAutoUpdaterNotifications.Checked();
    u_.settings.Save(setting::kNotification, on);
    u_.tmrLiveUpadate.SetEnabled(on);
    u_.window.RefreshSummary();
  };
  page.cmbHours.Click = [this] {
    u_.settings.Save(setting::kAfterHours, u_.page.cmbHours.ListIndex());
  };
}

void Options::WireClosing() {
  OptionsPage& page = u_.page;
  page.optOnClose0.Click = [this] { u_.settings.Save(setting::kOnClose, "Minimize"); };
  page.optOnClose1.Click = [this] { u_.settings.Save(setting::kOnClose, "Exit"); };

  const auto closesBy = [this](OptionButton& option, Answer answer, int skip) {
    option.Click = [this, answer, skip] {
      u_.settings.Save(setting::kButton, static_cast<int>(answer));
      u_.settings.Save(setting::kSkipMessages, skip);
    };
  };
  closesBy(page.optCloseOptions0, Answer::kYes, 1);
  closesBy(page.optCloseOptions1, Answer::kNo, 1);
  closesBy(page.optCloseOptions2, Answer::kCancel, 0);

  const auto saveAllThree = [this] {
    const OptionsPage& p = u_.page;
    u_.settings.Save(setting::kShowAlways, p.optShowAlways.Value());
    u_.settings.Save(setting::kCloseAllIE, p.optCloseAllIEAndDonotShowIfFuture.Value());
    u_.settings.Save(setting::kSkipClosing, p.optSkipClosingAndDonotShow.Value());
  };
  page.optShowAlways.Click = saveAllThree;
  page.optCloseAllIEAndDonotShowIfFuture.Click = saveAllThree;
  page.optSkipClosingAndDonotShow.Click = saveAllThree;
}

void WriteRunValue(Registry& registry, Machine& machine, bool on) {
  if (on) {
    RegCreateKeyValue(
        registry, hive::kLocalMachine, kRunKey, kExecutableName,
        GetPathWithSlash(machine.ProgramFolder()) + std::string(kExecutableName) + ".exe");
  } else {
    DeleteValue(registry, hive::kLocalMachine, kRunKey, kExecutableName);
  }
}

void Options::Load(bool registersProgram) {
  loadingRegisters_ = registersProgram;
  struct Loading {
    explicit Loading(bool& on) : flag(on) { flag = true; }
    ~Loading() { flag = false; }
    bool& flag;
  } const loading(loading_);
  OptionsPage& page = u_.page;
  // A value that makes no sense costs its own option alone.
  const auto load = [this](const Handler& option) {
    Reporting(u_.log, "GetSettingOfFormMain in frmMain", option);
  };
  // A box that is set stores its value, which must not be one that was never read.
  const auto loadState = [&](CheckBox& box, const auto& key) {
    load([&] {
      const size_t failed = u_.settings.FailedReads();
      const auto value = u_.settings.Get(key);
      if (u_.settings.FailedReads() == failed) box.SetValue(value);
    });
  };
  loadState(page.chkScanRegitry, setting::kScanRegistry);
  loadState(page.chkScanMemory, setting::kSweepMemory);
  loadState(page.chkScanCookies, setting::kScanCookies);
  loadState(page.chkDeepScan, setting::kDeepScan);
  loadState(page.chkStartupShield, setting::kStartupShield);
  loadState(page.chkDisplayHijakRestoreAlerts, setting::kDisplayHijakRestoreAlerts);
  loadState(page.chkMemorySheild, setting::kMemorySheildOn);
  loadState(page.chkSelfDownloadingActivex, setting::kSheild);
  loadState(page.chkReportLorrimesh, setting::kReportLorrimesh);
  loadState(page.chkStrict, setting::kStrict);
  loadState(page.chkRunAtStartup, setting::kRunAtStartup);
  loadState(page.chkMinimizeToTrayWindowAtStartup, setting::kMinimizeAtStartup);
  page.chkMinimizeToTrayWindowAtStartup.SetEnabled(page.chkRunAtStartup.Checked());

  loadState(u_.results.chkCreateRestore, setting::kRestorePoint);
  loadState(u_.results.chkDoNotShowIgnoredItem, setting::kDoNotShowIgnoredItem);

  page.onClose.Choose(u_.settings.Get(setting::kOnClose) == "Exit" ? 1 : 0);
  SynchroniseCloseOptions();
  int choice = 0;
  for (const auto* key : {&setting::kShowAlways, &setting::kCloseAllIE, &setting::kSkipClosing}) {
    if (u_.settings.Get(*key)) page.closeBrowser.Choose(choice);
    ++choice;
  }
  LoadDriveTicks(u_.scan, u_.settings);
  LoadLastUpdateLabel();
}

void Options::LoadLastUpdateLabel() {
  const std::string stored = u_.settings.Get(setting::kProgramUpdated);
  Label& label = u_.page.lblLastUpdateDefinationDate;
  // A date text that begins with no digit reads as never updated.
  if (Val(stored) == 0) {
    label.SetCaption(setting::kProgramUpdated.fallback);
    return;
  }
  label.SetCaption(PageMoment(stored));
}

void Options::LoadUpdateOptions() {
  OptionsPage& page = u_.page;
  Reporting(u_.log, "Form_Load of frmMain",
            [&] { page.cmbHours.SetListIndex(u_.settings.Get(setting::kAfterHours)); });
  const bool on = u_.settings.Get(setting::kNotification);
  page.chkEnableAutoUpdaterNotifications.SetValue(on ? 1 : 0);
  u_.tmrLiveUpadate.SetEnabled(on);
}

void Options::SynchroniseCloseOptions() {
  OptionGroup& group = u_.page.closeOptions;
  switch (static_cast<Answer>(u_.settings.Get(setting::kButton))) {
    case Answer::kYes:
      group.Choose(0);
      break;
    case Answer::kNo:
      group.Choose(1);
      break;
    case Answer::kCancel:
      group.Choose(2);
      break;
    default:
      break;
  }
  if (u_.settings.Get(setting::kSkipMessages) == 0) group.Choose(2);
}

void Options::RestoreAlertOption() {
  u_.page.chkAlertsBlocksSpywareAdware.SetValue(rememberedAlert_);
}

}  // namespace quarnel
