#include "core/settings.h"

#include <gtest/gtest.h>

#include <set>

#include "base/text.h"
#include "core/error_log.h"
#include "core/paths.h"
#include "core/startup.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

// A registry in which one key cannot be deleted.
class StubbornRegistry : public Registry {
 public:
  StubbornRegistry(Registry& registry, std::string stays)
      : registry_(registry), stays_(std::move(stays)) {}
  RegistryStatus Open(uint32_t root, std::string_view path, uint32_t access,
                      std::unique_ptr<RegistryKey>& key) override {
    return registry_.Open(root, path, access, key);
  }
  RegistryStatus Create(uint32_t root, std::string_view path,
                        std::unique_ptr<RegistryKey>& key) override {
    return registry_.Create(root, path, key);
  }
  RegistryStatus Delete(uint32_t root, std::string_view path) override {
    return EndsWithText(path, stays_) ? RegistryStatus::kAccessDenied
                                      : registry_.Delete(root, path);
  }
  std::string SetKeySecurity(uint32_t root, std::string_view path, std::string_view account,
                             uint32_t access) override {
    return registry_.SetKeySecurity(root, path, account, access);
  }
  std::string AccountName() override { return registry_.AccountName(); }

 private:
  Registry& registry_;
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
  EXPECT_EQ(settings.Get(setting::kButton), "2") << "a number is no setting";
}

TEST_F(SettingsTest, ReadersWithTheirOwnFallbacks) {
  EXPECT_EQ(settings.Get(setting::kScanCookies), "1");
  EXPECT_EQ(settings.GetOther(setting::kScanCookies), "True");
  EXPECT_EQ(settings.GetForToggle(setting::kScanCookies), "False");
  EXPECT_EQ(settings.GetOther(setting::kButton), "7");
  EXPECT_EQ(settings.GetOther(setting::kDeepScan), "1") << "readers that agree";
  const SettingKey drive = setting::kDrive.Named("Drive C: Fixed Disk");
  EXPECT_EQ(settings.GetOther(drive), "Error");
  settings.Save(drive, "True");
  EXPECT_EQ(settings.Get(drive), "True");
  EXPECT_EQ(settings.GetSetting("Drives", "Drive C: Fixed Disk", ""), "True");
}

TEST_F(SettingsTest, TheTableNamesEachSettingOnce) {
  std::set<std::pair<std::string_view, std::string_view>> names;
  for (const SettingKey& key : AllSettings()) {
    EXPECT_TRUE(names.emplace(key.section, key.key).second) << key.section << "/" << key.key;
    if (key.form != SettingForm::kCheckState) continue;
    // The scan and the tray menu take these as booleans.
    for (const std::string_view text : {key.fallback, key.otherFallback, key.toggleFallback}) {
      EXPECT_TRUE(text.empty() || IgnoringErrors([&] { ToBoolean(text); })) << key.key;
    }
  }
  EXPECT_EQ(names.size(), 42u);
}

TEST_F(SettingsTest, ResetRunsOnceAndOnlyWhenAskedFor) {
  settings.Save(setting::kButton, "6");
  settings.Save(setting::kResetValue, "  ");
  settings.ResetRegistrySettings();
  EXPECT_EQ(settings.Get(setting::kButton), "6");
  settings.Save(setting::kResetValue, "1");
  settings.SaveSetting("Deep\\er", "k", "v");
  settings.ResetRegistrySettings();
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(registry().Open(kRoot, kStore, registry_access::kRead, key),
            RegistryStatus::kFileNotFound);
  settings.ResetRegistrySettings();
  EXPECT_EQ(settings.Get(setting::kButton), "2");
}

TEST_F(SettingsTest, ResetEndsWhenAKeyStays) {
  StubbornRegistry stubborn(registry(), "\\BHO");
  Settings store(stubborn, std::string(kApplication));
  store.Save(setting::kJustAfterInstallation, "FALSE");
  store.Save(setting::kResetValue, "1");
  store.ResetRegistrySettings();
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(registry().Open(kRoot, std::string(kStore) + "\\BHO", registry_access::kRead, key),
            RegistryStatus::kSuccess);
}

struct FakeDesktop : Desktop {
  void EnumWindows(const std::function<bool(WindowId, std::string_view)>&) override {}
  void PostClose(WindowId) override {}
  std::optional<WindowId> FindWindow(std::string_view name, std::string_view caption) override {
    asked.emplace_back(caption);
    EXPECT_EQ(name, "ThunderRT6FormDC");
    return caption == present ? std::optional<WindowId>(7) : std::nullopt;
  }
  void BringForward(WindowId window) override { forward = window; }
  void Announce(std::string_view, std::string_view) override {}

  std::string present;
  std::vector<std::string> asked;
  WindowId forward = 0;
};

TEST_F(SettingsTest, AnotherInstanceIsFoundByItsCaption) {
  FakeDesktop desktop;
  EXPECT_FALSE(IsPrevInstanceRunning(desktop, settings));
  EXPECT_EQ(desktop.asked, (Strings{"Getting Started with QuarnelTest", "QuarnelTest v3.0.4"}));
  EXPECT_EQ(desktop.forward, 0u);
  // An installed update overrules the version record, for the window and for who looks for it.
  settings.Save(setting::kApplicationVersion, "3.1.0");
  desktop.present = "QuarnelTest v3.1.0";
  EXPECT_TRUE(IsPrevInstanceRunning(desktop, settings));
  EXPECT_EQ(desktop.forward, 7u);
  EXPECT_EQ(SignatureVersion(settings), "3.0.4");
}

TEST_F(SettingsTest, TheOldExecutableGoes) {
  const std::string path = GetPathWithSlash(machine().ProgramFolder()) + "old" +
                           ToUpper(machine().ExecutableName()) + ".EXE";
  DeleteOldExe(files(), machine());
  WriteWholeFile(files(), path, "x");
  DeleteOldExe(files(), machine());
  EXPECT_FALSE(FileExists(files(), path));
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
  // A log that cannot be written fails its procedure.
  files().CreateFolder(log.Path());
  EXPECT_THROW(Reporting(log, "x", [] { throw RuntimeError(ErrorNumber::kOverflow); }),
               RuntimeError);
  files().DeleteFolder(log.Path());
}

}  // namespace
}  // namespace quarnel
