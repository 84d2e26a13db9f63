#pragma once

#include <string_view>

#include "core/setting_forms.h"

// The table of all settings: where each stands, its form, and what its reader assumes when it is
// absent. Where readers disagree, each has its own key of one place.
namespace quarnel {

struct SettingPlace {
  std::string_view section;
  std::string_view name;
};

// How one reader, or several that agree, takes the setting of a place.
template <class Form>
struct SettingKey {
  SettingPlace place;
  std::string_view fallback;  // what is read when the setting is absent

  // The key of a reader that takes the same setting otherwise.
  template <class OtherForm = Form>
  constexpr SettingKey<OtherForm> ReadAs(std::string_view otherFallback) const {
    return {place, otherFallback};
  }
  // The key of one name, for a line whose names are known at run time.
  constexpr SettingKey Named(std::string_view name) const {
    return {{place.section, name}, fallback};
  }
};

namespace setting {

inline constexpr std::string_view kOptions = "OptionAndSettings";
inline constexpr std::string_view kGeneral = "Settings";
inline constexpr std::string_view kNamedAtRunTime = {};

// The option page takes the scans as check states, the scan itself as booleans: a torn
// one must not make it find less.
inline constexpr SettingKey<CheckState> kScanRegistry{{kOptions, "chkScanRegistry"}, "1"};
inline constexpr auto kScansRegistry = kScanRegistry.ReadAs<TrueUnlessFalse>("True");
inline constexpr SettingKey<CheckState> kSweepMemory{{kOptions, "chkSweepMemory"}, "1"};
inline constexpr auto kScansMemory = kSweepMemory.ReadAs<TrueUnlessFalse>("True");
inline constexpr SettingKey<CheckState> kScanCookies{{kOptions, "chkScanCookies"}, "1"};
inline constexpr auto kScansCookies = kScanCookies.ReadAs<TrueUnlessFalse>("True");
inline constexpr SettingKey<CheckState> kDeepScan{{kOptions, "chkDeepScan"}, "1"};
inline constexpr auto kScansDeep = kDeepScan.ReadAs<TrueUnlessFalse>("True");

inline constexpr SettingKey<CheckState> kStartupShield{{kOptions, "chkStartupShield"}, "1"};
inline constexpr SettingKey<CheckState> kDisplayHijakRestoreAlerts{
    {kOptions, "chkDisplayHijakRestoreAlerts"}, "1"};
inline constexpr SettingKey<CheckState> kMemorySheildOn{{kOptions, "optMemorySheildOn"}, "1"};
// The opposite of the one above, which the tray menu keeps and nobody reads.
inline constexpr SettingKey<TrueFalse> kMemorySheildOff{{kOptions, "optMemorySheildOff"}, ""};
// The ActiveX shield.
inline constexpr SettingKey<CheckState> kSheild{{kOptions, "Sheild"}, "0"};
inline constexpr SettingKey<StraightCheckState> kReportLorrimesh{{kOptions, "optLorrigrid"}, "1"};
inline constexpr SettingKey<CheckState> kRunAtStartup{{kOptions, "RunAtStartup"}, "1"};

// The rows of the tray menu: what is painted, and what is turned over, for which an absent setting
// is the opposite. They write "True" and "False", which the option page reads as 0.
inline constexpr auto kTrayCookies = kScanCookies.ReadAs<TrueFalse>("True");
inline constexpr auto kTrayCookiesTurned = kScanCookies.ReadAs<TrueFalse>("False");
inline constexpr auto kTrayMemorySheild = kMemorySheildOn.ReadAs<TrueFalse>("True");
inline constexpr auto kTrayMemorySheildTurned = kMemorySheildOn.ReadAs<TrueFalse>("False");
inline constexpr auto kTrayRunAtStartup = kRunAtStartup.ReadAs<TrueFalse>("False");
inline constexpr auto kTrayRunAtStartupTurned = kRunAtStartup.ReadAs<TrueFalse>("True");

// Restore points come back exactly as their manifests say, and quarantined files never collide.
inline constexpr SettingKey<CheckState> kStrict{{kOptions, "chkStrict"}, "0"};

// Nobody writes it: each of its two readers sees its own fallback.
inline constexpr SettingKey<Text> kShowScreen{{kOptions, "ShowScreen"}, "True"};
inline constexpr auto kShowScreenWithOptions = kShowScreen.ReadAs("YES");

// Where nobody can tell what was chosen, the removal asks, and closes nothing unasked.
inline constexpr SettingKey<TrueFalse> kShowAlways{{kOptions, "ShowAlways"}, "True"};
inline constexpr auto kRemovalShowAlways = kShowAlways.ReadAs<TrueUnlessFalse>("False");
inline constexpr SettingKey<TrueFalse> kCloseAllIE{{kOptions, "CloseAllIEAndDonotShowIfFuture"},
                                                   "False"};
inline constexpr auto kRemovalCloseAllIE = kCloseAllIE.ReadAs("True");
inline constexpr SettingKey<TrueFalse> kSkipClosing{{kOptions, "SkipClosingAndDonotShow"}, "False"};

inline constexpr SettingKey<CheckState> kAutomaticScan{{kOptions, "chkAutomaticScanYesOrNo"}, "0"};
inline constexpr auto kWizardAutomaticScan = kAutomaticScan.ReadAs("1");
inline constexpr SettingKey<Number> kDay{{kOptions, "Day"}, "7"};
// Reads as its fallback until a schedule was applied for the first time.
inline constexpr auto kAppliedDay = kDay.ReadAs<Text>("None");
inline constexpr SettingKey<Date> kTime{{kOptions, "Time"}, "Null"};
inline constexpr SettingKey<Date> kDate{{kOptions, "Date"}, "Null"};

inline constexpr SettingKey<Date> kProgramUpdated{{kOptions, "QNLExe.zip"}, "[NOT UPDATED YET]"};
inline constexpr auto kUpdatePageProgramUpdated = kProgramUpdated.ReadAs("[Not Updated]");
inline constexpr SettingKey<Date> kSignaturesUpdated{{kOptions, "QNLSig.zip"}, "[Not Updated]"};

inline constexpr SettingKey<Text> kHomepage{{kOptions, "Homepage"}, "ERROR"};
// The home page of another browser, by the browser's name.
inline constexpr SettingKey<Text> kHomePageOf{{"HomePage", kNamedAtRunTime}, "about:blank"};
inline constexpr SettingKey<TrueFalse> kRebootRequired{{kOptions, "Reboot Required"}, "False"};
inline constexpr SettingKey<CheckState> kMinimizeAtStartup{{kGeneral, "MinimizeAtStartup"}, "0"};
inline constexpr SettingKey<Text> kOnClose{{kGeneral, "optOnClose"}, "Minimize"};
inline constexpr SettingKey<Number> kButton{{kGeneral, "Button"}, "2"};
// The close of the window decides by this one, so a store without it minimises.
inline constexpr auto kClosingButton = kButton.ReadAs("7");
inline constexpr SettingKey<CheckState> kSkipMessages{{kGeneral, "chkSkipMessages"}, "0"};
inline constexpr SettingKey<Text> kIsFirstTimeAfterSetup{{kGeneral, "IsFirstTimeAfterSetup"},
                                                         "True"};
inline constexpr SettingKey<TrueFalse> kStarupAllowBlock{{kGeneral, "Starup-allow-block"}, ""};
inline constexpr SettingKey<UpperTrueFalse> kJustAfterInstallation{{"BHO", "JustAfterInstallation"},
                                                                   "TRUE"};
inline constexpr SettingKey<YesNo> kNotification{{"LiveUpdate", "Notification"}, "Yes"};
inline constexpr SettingKey<Number> kAfterHours{{"LiveUpdate", "AfterHours"}, "11"};
inline constexpr auto kTimerAfterHours = kAfterHours.ReadAs("3");
inline constexpr SettingKey<YesNo> kRestorePoint{{"BackupRestore", "RestorePoint"}, "Yes"};
inline constexpr SettingKey<YesNo> kDoNotShowIgnoredItem{
    {"chkDoNotShowIgnoredItem", "chkDoNotShowIgnoredItem"}, "Yes"};

// A drive as its list shows it, and whether it was ever ticked or unticked.
inline constexpr SettingKey<TrueFalse> kDrive{{"Drives", kNamedAtRunTime}, "False"};
inline constexpr auto kDriveMark = kDrive.ReadAs<Text>("Error");

inline constexpr SettingKey<Date> kScanStart{{"ScanTime", "Start"}, "[NOT SCANNED YET]"};
inline constexpr SettingKey<Date> kScanEnd{{"ScanTime", "End"}, ""};
// Absent means the version record's own text: RunningVersion() and SignatureVersion() read them.
inline constexpr SettingKey<Text> kApplicationVersion{{"Version", "Application"}, ""};
inline constexpr SettingKey<Text> kSignatureVersion{{"Version", "Signature"}, ""};
// A browser setting by its name; absent means that setting's own default.
inline constexpr SettingKey<Text> kBrowserRestore{{"BHJ", kNamedAtRunTime}, ""};
// Written by an installer that wants a clean slate.
inline constexpr SettingKey<Text> kResetValue{{"Registry Status", "ResetValue"}, ""};

}  // namespace setting

}  // namespace quarnel
