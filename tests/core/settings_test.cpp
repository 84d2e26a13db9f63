#include "core/settings.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "core/error_log.h"
#include "core/open_in_browser.h"
#include "core/paths.h"
#include "core/product.h"
#include "core/startup.h"
#include "support/breakable_platform.h"
#include "support/machine_in.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

// A registry in which one key cannot be deleted, and that may not be readable at all.
class StubbornRegistry : public BreakableRegistry {
 public:
  StubbornRegistry(Registry& registry, std::string stays)
      : BreakableRegistry(registry), stays_(std::move(stays)) {}
  RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                      std::unique_ptr<RegistryKey>& key) override {
    constexpr auto kIoFailed = static_cast<RegistryStatus>(1016);
    return unreadable ? kIoFailed : BreakableRegistry::Open(root, path, access, key);
  }
  RegistryStatus Delete(uint32_t root, std::string_view path) override {
    return EndsWithText(path, stays_) ? RegistryStatus::kAccessDenied
                                      : BreakableRegistry::Delete(root, path);
  }

 private:
  std::string stays_;
};

class SettingsTest : public PlatformTest {
 protected:
  static constexpr std::string_view kApplication = "QuarnelTest";
  static constexpr std::string_view kStore = "Software\\VB and VBA Program Settings\\QuarnelTest";
  SettingsTest() { Empty(); }
  ~SettingsTest() override { Empty(); }
  void Empty() {
    DeleteKeyTree(registry(), kRoot, kStore, [] {});
  }

  Settings settings{registry(), std::string(kApplication)};
};

TEST_F(SettingsTest, AbsentIsNotEmpty) {
  EXPECT_EQ(settings.GetSetting("Registry Status", "x y", "none"), "none");
  settings.SaveSetting("Registry Status", "x y", "");
  EXPECT_EQ(settings.GetSetting("registry status", "X Y", "none"), "");
  settings.SaveSetting("Registry Status", "x y", " \xC3\xA4 ");
  EXPECT_EQ(settings.GetSetting("Registry Status", "x y", "none"), " \xC3\xA4 ");
  EXPECT_EQ(settings.GetSetting("Registry Status", "z", "none"), "none");
  RegistryValue stored;
  EXPECT_TRUE(
      QueryValue(registry(), kRoot, std::string(kStore) + "\\Registry Status", "x y", stored));
  RegCreateKeyValue(registry(), kRoot, std::string(kStore) + "\\Settings", "Button", 6U);
  EXPECT_EQ(settings.Get(setting::kButton), 2) << "a number is no setting";
  // Neither is a failure.
  EXPECT_EQ(settings.FailedReads(), 0U);
  StubbornRegistry unreadable(registry(), "none");
  unreadable.unreadable = true;
  const Settings lost(unreadable, std::string(kApplication));
  EXPECT_EQ(lost.Get(setting::kButton), 2);
  EXPECT_EQ(lost.FailedReads(), 1U);
}

template <class Form, class Value>
constexpr bool Takes(const SettingKey<Form>& key, const Value& value) {
  return requires(Settings store) { store.Save(key, value); };
}
static_assert(Takes(setting::kButton, 6) && !Takes(setting::kButton, "6"));
static_assert(Takes(setting::kNotification, true) && !Takes(setting::kNotification, 1) &&
              !Takes(setting::kNotification, "Yes"));
static_assert(!Takes(setting::kScanStart, "3/5/2024") && !Takes(setting::kHomepage, true));

// Each form of truth reads its own words alone; a torn one is what its reader takes it for.
TEST_F(SettingsTest, FormsOfTruth) {
  const auto read = [&](const auto& key, std::string_view text) {
    settings.SaveSetting(key.place.section, key.place.name, text);
    return static_cast<int>(settings.Get(key));
  };
  struct Row {
    std::string_view text;
    int checkState, yesNo, trueFalse, trueUnlessFalse, upper;
  };
  for (const Row& row :
       {Row{"1", 1, 0, 1, 1, 0}, Row{"0", 0, 0, 0, 0, 0}, Row{"Yes", 0, 1, 0, 1, 0},
        Row{"yes", 0, 0, 0, 1, 0}, Row{"True", 0, 0, 1, 1, 0}, Row{"False", 0, 0, 0, 0, 0},
        Row{"TRUE", 0, 0, 1, 1, 1}, Row{"2x", 2, 0, 0, 1, 0}}) {
    EXPECT_EQ(read(setting::kScanCookies, row.text), row.checkState) << row.text;
    EXPECT_EQ(read(setting::kNotification, row.text), row.yesNo) << row.text;
    EXPECT_EQ(read(setting::kTrayCookies, row.text), row.trueFalse) << row.text;
    EXPECT_EQ(read(setting::kScansCookies, row.text), row.trueUnlessFalse) << row.text;
    EXPECT_EQ(read(setting::kJustAfterInstallation, row.text), row.upper) << row.text;
  }
  EXPECT_THROW(read(setting::kReportLorrimesh, "no number"), RuntimeError);
}

TEST_F(SettingsTest, FormsAsWritten) {
  const auto written = [&](const auto& key, auto value) {
    settings.Save(key, value);
    return settings.GetSetting(key.place.section, key.place.name, "(absent)");
  };
  EXPECT_EQ(written(setting::kTrayCookies, true), "True");
  EXPECT_EQ(settings.Get(setting::kScanCookies), 0) << "the option page takes no words";
  EXPECT_EQ(written(setting::kNotification, false), "No");
  EXPECT_EQ(written(setting::kJustAfterInstallation, false), "FALSE");
  EXPECT_EQ(written(setting::kScanStart, *ParseDate("2024-03-05 14:30")), "3/5/2024 2:30:00 PM");
  EXPECT_EQ(written(setting::kDrive.Named("Drive C: Fixed Disk"), true), "True");
}

// The readers that disagree on what an absent setting is.
TEST_F(SettingsTest, ReadersWithTheirOwnFallbacks) {
  EXPECT_EQ(settings.Get(setting::kButton), 2);
  EXPECT_EQ(settings.Get(setting::kClosingButton), 7);
  EXPECT_EQ(settings.Get(setting::kAfterHours), 11);
  EXPECT_EQ(settings.Get(setting::kTimerAfterHours), 3);
  EXPECT_TRUE(settings.Get(setting::kTrayCookies));
  EXPECT_FALSE(settings.Get(setting::kTrayCookiesTurned));
  EXPECT_FALSE(settings.Get(setting::kTrayRunAtStartup));
  EXPECT_TRUE(settings.Get(setting::kTrayRunAtStartupTurned));
  EXPECT_TRUE(settings.Get(setting::kShowAlways));
  EXPECT_FALSE(settings.Get(setting::kRemovalShowAlways));
  EXPECT_FALSE(settings.Get(setting::kCloseAllIE));
  EXPECT_TRUE(settings.Get(setting::kRemovalCloseAllIE));
  EXPECT_EQ(settings.Get(setting::kAutomaticScan), 0);
  EXPECT_EQ(settings.Get(setting::kWizardAutomaticScan), 1);
}

TEST_F(SettingsTest, ResetRunsOnceAndOnlyWhenAskedFor) {
  settings.Save(setting::kButton, 6);
  settings.Save(setting::kResetValue, "  ");
  settings.ResetRegistrySettings();
  EXPECT_EQ(settings.Get(setting::kButton), 6);
  settings.Save(setting::kResetValue, "1");
  settings.SaveSetting("Deep\\er", "k", "v");
  settings.ResetRegistrySettings();
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(registry().Open(kRoot, kStore, registry_access::kRead, key),
            RegistryStatus::kFileNotFound);
  settings.ResetRegistrySettings();
  EXPECT_EQ(settings.Get(setting::kButton), 2);
}

TEST_F(SettingsTest, ResetEndsWhenAKeyStays) {
  StubbornRegistry stubborn(registry(), "\\BHO");
  Settings store(stubborn, std::string(kApplication));
  store.Save(setting::kJustAfterInstallation, false);
  store.Save(setting::kResetValue, "1");
  store.ResetRegistrySettings();
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(registry().Open(kRoot, std::string(kStore) + "\\BHO", registry_access::kRead, key),
            RegistryStatus::kSuccess);
}

TEST_F(SettingsTest, AnotherInstanceIsFoundByItsCaption) {
  const auto other = OpenPlatform(machineFolder());
  const auto isFoundAs = [&](std::string_view caption) {
    other->desktop().Announce(kWindowClass, caption);
    const bool found = IsPrevInstanceRunning(platform().desktop(), settings);
    other->desktop().Announce(kWindowClass, "");
    return found;
  };
  EXPECT_TRUE(isFoundAs("Getting Started with QuarnelTest"));
  EXPECT_TRUE(isFoundAs("QuarnelTest v3.0.4"));
  EXPECT_FALSE(isFoundAs("Quarnel v3.0.4"));
  // An installed update overrules the version record, for the window and for who looks for it.
  settings.Save(setting::kApplicationVersion, "3.1.0");
  EXPECT_TRUE(isFoundAs("QuarnelTest v3.1.0"));
  EXPECT_FALSE(isFoundAs("QuarnelTest v3.0.4"));
  EXPECT_EQ(SignatureVersion(settings), "3.0.4");
}

TEST_F(SettingsTest, ErrorLogEntries) {
  TestHost host;  // its clock begins on 3/5/2024 at 2:30 PM
  ErrorLog log(files(), machine(), host, "QuarnelTest");
  EXPECT_EQ(log.Path(), DataFolder(machine()) + "QuarnelTest_ErrLogFile.txt");
  EXPECT_TRUE(Reporting(log, "none", [] {}));
  EXPECT_FALSE(Reporting(log, "Form_Load of frmMain",
                         [] { throw RuntimeError(ErrorNumber::kTypeMismatch); }));
  EXPECT_FALSE(Reporting(log, "x", [] { throw RuntimeError(ErrorNumber::kOverflow); }));
  const std::string dashes(33, '-');
  EXPECT_EQ(ReadWholeFile(files(), log.Path()),
            "Error Number :  13\r\nError Description :  Type mismatch\r\n"
            "3/5/20242:30:00 PMForm_Load of frmMain\r\n" +
                dashes +
                "\r\nError Number :  6\r\nError Description :  Overflow\r\n"
                "3/5/20242:30:00 PMx\r\n" +
                dashes + "\r\n");
  files().Delete(log.Path());
  // What cannot be written ends nothing, and follows with the next entry.
  files().CreateFolder(log.Path());
  EXPECT_FALSE(Reporting(log, "late", [] { throw RuntimeError(ErrorNumber::kOverflow); }));
  EXPECT_THROW(log.WriteErrorLog("late too", RuntimeError(ErrorNumber::kOverflow)), RuntimeError);
  files().DeleteFolder(log.Path());
  Reporting(log, "next", [] { throw RuntimeError(ErrorNumber::kOverflow); });
  const std::string text = Read(log.Path());
  EXPECT_LT(text.find("PMlate\r\n"), text.find("PMlate too\r\n"));
  EXPECT_LT(text.find("PMlate too\r\n"), text.find("PMnext\r\n"));
  files().Delete(log.Path());
}

using OpenInBrowserTest = PlatformTest;

// A shell whose answers are set.
struct ScriptedShell : Shell {
  std::optional<std::string> browser = "browser";
  bool runs = true;
  std::string ran;

  std::optional<std::string> FindExecutable(std::string_view path) override {
    ran = path;
    return browser;
  }
  bool Run(std::string_view program, std::string_view argument) override {
    ran = std::string(program) + " " + std::string(argument);
    return runs;
  }
  std::optional<std::string> ShortcutTarget(std::string_view) override { return std::nullopt; }
  bool CallRegistrationEntry(std::string_view, std::string_view) override { return false; }
};

struct OtherTemp : MachineIn {
  OtherTemp(Machine& machine, std::optional<std::string> folder)
      : MachineIn(machine, ""), temp(std::move(folder)) {}
  std::optional<std::string> TempFolder() override { return temp; }
  std::optional<std::string> temp;
};

TEST_F(OpenInBrowserTest, OpensAnAddressOrSaysWhyNot) {
  const struct {
    std::optional<std::string> temp;
    std::string_view text, title;
    MessageIcon icon;
    bool hasBrowser = true, runs = true, leavesFile = false;
  } cases[] = {
      {std::nullopt, "Sorry! file  cannot be created.", "Title", MessageIcon::kInformation},
      {Path("missing"), "Sorry! file  cannot be created.", "Title", MessageIcon::kInformation},
      {Scratch(), "Could not find associated application!", "Browser Not Found",
       MessageIcon::kExclamation, false, true, true},
      {Scratch(), "Page not Opened.", "URL Failed", MessageIcon::kNone, true, false},
      {Scratch(), "", "", MessageIcon::kNone},
  };
  for (const auto& test : cases) {
    ScriptedShell shell;
    if (!test.hasBrowser) shell.browser.reset();
    shell.runs = test.runs;
    OtherTemp temp(machine(), test.temp);
    TestHost host;
    OpenInBrowser(shell, temp, files(), host, "http://a.example/?x=1&y", "htm", "Title");
    ASSERT_EQ(host.messages.size(), test.text.empty() ? 0U : 1U) << test.text;
    if (!host.messages.empty()) {
      EXPECT_EQ(host.messages[0].text, test.text);
      EXPECT_EQ(host.messages[0].title, test.title);
      EXPECT_EQ(host.messages[0].icon, test.icon);
    } else {
      EXPECT_EQ(shell.ran, "browser http://a.example/?x=1&y");
    }
    EXPECT_EQ(files().Stat(Path("temphtm.htm")).has_value(), test.leavesFile) << test.text;
    IgnoringErrors([&] { files().Delete(Path("temphtm.htm")); });
  }
}

}  // namespace
}  // namespace quarnel
