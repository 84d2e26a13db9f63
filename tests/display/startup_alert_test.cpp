// The alert of the startup shield, answered by hand.

#include "display/display_fixture.h"
#include "support/second_process.h"

namespace quarnel {
namespace {

using ::testing::HasSubstr;

class StartupAlertDisplayTest : public DisplayTest {
 protected:
  StartupAlertDisplayTest() {
    Sweep();
    settings.Save(setting::kJustAfterInstallation, false);
  }
  ~StartupAlertDisplayTest() override { Sweep(); }

  void Sweep() {
    IgnoringErrors([&] { files().Delete(verdicts); });
    DeleteValue(registry(), hive::kLocalMachine, kKey, "Sample");
  }
  std::string Value() { return QueryText(registry(), hive::kLocalMachine, kKey, "Sample"); }
  // Another process adds an entry, and all locations are walked.
  void Appear(StartupShield& startups, const std::string& program) {
    EXPECT_TRUE(ImportByAnotherProcess(machineFolder(),
                                       "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\" + std::string(kKey) +
                                           "]\r\n\"Sample\"=\"C:\\\\" + program + "\"\r\n\r\n"));
    host->Act([&] {
      for (size_t i = 0; i < startup::kWalked; ++i) startups.Reload();
    });
    Until("the alert", [this] {
      const Form* alert = Shown("frmStarUpAlert");
      return alert != nullptr && !alert->Find("tmrPopupSignatureUpdate")->Enabled();
    });
    Run();
  }

  static constexpr std::string_view kKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
  std::string verdicts = GetPathWithSlash(machine().ProgramFolder()) + "Quarnel_Startup.txt";
};

TEST_F(StartupAlertDisplayTest, ButtonsAreClicked) {
  frmMain& main = Start();
  StartupShield& startups = main.engine().startups();
  for (const StartupShield::State& state : startups.States()) {
    startups.Remember(state.entry, verdict::kAllowed);
  }
  host->Act([this] { application->forms().starUpAlert.Unload(); });
  Click("imgMainTab(5)");
  Run();
  const auto gone = [this] { return Shown("frmStarUpAlert") == nullptr; };
  Appear(startups, "first.exe");
  ExpectInStep(application->forms().starUpAlert.Touch());
  ClickIn("frmStarUpAlert", "cmdBlock");
  robot.AnswerBox("Yes");
  Until("its end", gone);
  Run();
  EXPECT_EQ(Value(), "");

  Appear(startups, "second.exe");
  ClickIn("frmStarUpAlert", "cmdAllow");
  Until("its end", gone);
  Run();
  EXPECT_EQ(Value(), "C:\\second.exe");
  EXPECT_THAT(Read(verdicts), HasSubstr("Sample=C:\\second.exe[ALLOWED]"));
  host->Act([&] { main.tools.tvwAdvancedTools.ClickByUser(main.tools.tvwAdvancedTools.At(2)); });
  ExpectInStep(main);
}

}  // namespace
}  // namespace quarnel
