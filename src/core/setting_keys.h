#pragma once

#include <string_view>

// The table of all settings: section, key, text form, and what its readers assume when it is
// absent.
namespace quarnel {

// In which text form a setting holds its value. The four forms of truth are not interchangeable.
enum class SettingForm {
  kCheckState,      // "0" or "1", read through Val; the tray menu writes "True" or "False" here
  kYesNo,           // "Yes" or "No"
  kTrueFalse,       // "True" or "False"
  kUpperTrueFalse,  // "TRUE" or "FALSE"
  kNumber,
  kText,
  kDateTime,
};

// One line of the table.
struct SettingKey {
  std::string_view section;
  std::string_view key;
  SettingForm form;
  std::string_view fallback;  // what the reader passes when the key is absent
  // A second reader's fallback where readers disagree on purpose; empty when they agree.
  std::string_view otherFallback = {};
  // What the tray menu assumes when it is about to turn the setting over; empty when it never does.
  std::string_view toggleFallback = {};

  // The line for one concrete key, where keys are named at run time.
  constexpr SettingKey Named(std::string_view name) const {
    return {section, name, form, fallback, otherFallback, toggleFallback};
  }
};

namespace setting {

using enum SettingForm;

inline constexpr std::string_view kOptions = "OptionAndSettings";
inline constexpr std::string_view kGeneral = "Settings";
inline constexpr std::string_view kDrivesSection = "Drives";
// The key of a line whose keys are named at run time.
inline constexpr std::string_view kNamedAtRunTime = {};

// The scan's own read is the other one.
inline constexpr SettingKey kScanRegistry{kOptions, "chkScanRegistry", kCheckState, "1", "True"};
inline constexpr SettingKey kSweepMemory{kOptions, "chkSweepMemory", kCheckState, "1", "True"};
inline constexpr SettingKey kScanCookies{kOptions, "chkScanCookies", kCheckState,
                                         "1",      "True",           "False"};
inline constexpr SettingKey kDeepScan{kOptions, "chkDeepScan", kCheckState, "1"};
inline constexpr SettingKey kStartupShield{kOptions, "chkStartupShield", kCheckState, "1"};
inline constexpr SettingKey kDisplayHijakRestoreAlerts{kOptions, "chkDisplayHijakRestoreAlerts",
                                                       kCheckState, "1"};
inline constexpr SettingKey kMemorySheildOn{kOptions, "optMemorySheildOn", kCheckState, "1", "True",
                                            "False"};
// The opposite of the one above, which the tray menu keeps and nobody reads.
inline constexpr SettingKey kMemorySheildOff{kOptions, "optMemorySheildOff", kTrueFalse, ""};
// Restore points come back exactly as their manifests say, and quarantined files never collide.
inline constexpr SettingKey kStrict{kOptions, "chkStrict", kCheckState, "0"};
// The ActiveX shield.
inline constexpr SettingKey kSheild{kOptions, "Sheild", kCheckState, "0"};
inline constexpr SettingKey kReportLorrimesh{kOptions, "optLorrigrid", kCheckState, "1"};
inline constexpr SettingKey kRunAtStartup{kOptions, "RunAtStartup", kCheckState,
                                          "1",      "False",        "True"};
// Nobody writes it: each of its two readers sees its own fallback.
inline constexpr SettingKey kShowScreen{kOptions, "ShowScreen", kText, "True", "YES"};
inline constexpr SettingKey kSkipClosing{kOptions, "SkipClosingAndDonotShow", kTrueFalse, "False"};
// The removal's read is the other one, here and in the next.
inline constexpr SettingKey kCloseAllIE{kOptions, "CloseAllIEAndDonotShowIfFuture", kTrueFalse,
                                        "False", "True"};
inline constexpr SettingKey kShowAlways{kOptions, "ShowAlways", kTrueFalse, "True", "False"};
inline constexpr SettingKey kAutomaticScan{kOptions, "chkAutomaticScanYesOrNo", kCheckState, "0"};
// The other read tells that no schedule was ever applied.
inline constexpr SettingKey kDay{kOptions, "Day", kNumber, "7", "None"};
inline constexpr SettingKey kTime{kOptions, "Time", kText, "Null"};
inline constexpr SettingKey kDate{kOptions, "Date", kText, "Null"};
inline constexpr SettingKey kProgramUpdated{kOptions, "QNLExe.zip", kDateTime, "[NOT UPDATED YET]",
                                            "[Not Updated]"};
inline constexpr SettingKey kSignaturesUpdated{kOptions, "QNLSig.zip", kDateTime, "[Not Updated]"};
inline constexpr SettingKey kHomepage{kOptions, "Homepage", kText, "ERROR"};
inline constexpr SettingKey kRebootRequired{kOptions, "Reboot Required", kTrueFalse, "False"};
inline constexpr SettingKey kMinimizeAtStartup{kGeneral, "MinimizeAtStartup", kCheckState, "0"};
inline constexpr SettingKey kOnClose{kGeneral, "optOnClose", kText, "Minimize"};
// The close of the window decides by the other read, so a store without it minimises.
inline constexpr SettingKey kButton{kGeneral, "Button", kNumber, "2", "7"};
inline constexpr SettingKey kSkipMessages{kGeneral, "chkSkipMessages", kCheckState, "0"};
inline constexpr SettingKey kIsFirstTimeAfterSetup{kGeneral, "IsFirstTimeAfterSetup", kTrueFalse,
                                                   "True"};
inline constexpr SettingKey kStarupAllowBlock{kGeneral, "Starup-allow-block", kTrueFalse, ""};
inline constexpr SettingKey kJustAfterInstallation{"BHO", "JustAfterInstallation", kUpperTrueFalse,
                                                   "TRUE"};
inline constexpr SettingKey kNotification{"LiveUpdate", "Notification", kYesNo, "Yes"};
// The timer's read is the other one.
inline constexpr SettingKey kAfterHours{"LiveUpdate", "AfterHours", kNumber, "11", "3"};
inline constexpr SettingKey kRestorePoint{"BackupRestore", "RestorePoint", kYesNo, "Yes"};
inline constexpr SettingKey kDoNotShowIgnoredItem{"chkDoNotShowIgnoredItem",
                                                  "chkDoNotShowIgnoredItem", kYesNo, "Yes"};
// A drive as its list shows it; the other read tells that it was never ticked or unticked.
inline constexpr SettingKey kDrive{kDrivesSection, kNamedAtRunTime, kTrueFalse, "False", "Error"};
inline constexpr SettingKey kScanStart{"ScanTime", "Start", kDateTime, "[NOT SCANNED YET]"};
inline constexpr SettingKey kScanEnd{"ScanTime", "End", kDateTime, ""};
// Absent means the version record's own text: RunningVersion() and SignatureVersion() read them.
inline constexpr SettingKey kApplicationVersion{"Version", "Application", kText, ""};
inline constexpr SettingKey kSignatureVersion{"Version", "Signature", kText, ""};
// A browser setting by its name; absent means that setting's own default.
inline constexpr SettingKey kBrowserRestore{"BHJ", kNamedAtRunTime, kText, ""};
// Written by an installer that wants a clean slate.
inline constexpr SettingKey kResetValue{"Registry Status", "ResetValue", kText, ""};

// Every line above, in the same order.
inline constexpr SettingKey kAll[] = {kScanRegistry,
                                      kSweepMemory,
                                      kScanCookies,
                                      kDeepScan,
                                      kStartupShield,
                                      kDisplayHijakRestoreAlerts,
                                      kMemorySheildOn,
                                      kMemorySheildOff,
                                      kStrict,
                                      kSheild,
                                      kReportLorrimesh,
                                      kRunAtStartup,
                                      kShowScreen,
                                      kSkipClosing,
                                      kCloseAllIE,
                                      kShowAlways,
                                      kAutomaticScan,
                                      kDay,
                                      kTime,
                                      kDate,
                                      kProgramUpdated,
                                      kSignaturesUpdated,
                                      kHomepage,
                                      kRebootRequired,
                                      kMinimizeAtStartup,
                                      kOnClose,
                                      kButton,
                                      kSkipMessages,
                                      kIsFirstTimeAfterSetup,
                                      kStarupAllowBlock,
                                      kJustAfterInstallation,
                                      kNotification,
                                      kAfterHours,
                                      kRestorePoint,
                                      kDoNotShowIgnoredItem,
                                      kDrive,
                                      kScanStart,
                                      kScanEnd,
                                      kApplicationVersion,
                                      kSignatureVersion,
                                      kBrowserRestore,
                                      kResetValue};

}  // namespace setting

}  // namespace quarnel
