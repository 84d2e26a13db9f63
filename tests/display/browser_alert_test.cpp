// The alert of the browser's guard, answered by hand.

#include "display/display_fixture.h"

namespace quarnel {
namespace {

using ::testing::HasSubstr;

class BrowserAlertDisplayTest : public DisplayTest {
 protected:
  BrowserAlertDisplayTest() {
    DeleteFiles();
    SetHome("http://mine.example/");
  }
  ~BrowserAlertDisplayTest() override { DeleteFiles(); }

  void DeleteFiles() {
    for (const std::string& path : {baselines, verdicts}) {
      IgnoringErrors([&] { files().Delete(path); });
    }
  }
  void SetHome(const std::string& page) {
    RegCreateKeyValue(registry(), home.hive, home.key, home.value, page);
  }
  std::string Home() { return QueryText(registry(), home.hive, home.key, home.value); }

  const BrowserSetting& home = BrowserSettingTable().front();
  std::string baselines = GetPathWithSlash(machine().ProgramFolder()) + "QS_BHR.ini";
  std::string verdicts = GetPathWithSlash(machine().ProgramFolder()) + "QS_AB_BHR.ini";
};

TEST_F(BrowserAlertDisplayTest, ButtonsAreClicked) {
  frmMain& main = Start();
  Click("imgMainTab(1)");
  Run();
  const auto gone = [&] { return Shown("frmBHR") == nullptr; };
  const auto arrived = [&] {
    const Form* alert = Shown("frmBHR");
    return alert != nullptr && !alert->Find("tmrPopupSignatureUpdate")->Enabled();
  };
  main.engine().browserSettings().Pending() = {.newValue = "a", .storedValue = "b"};
  SetHome("http://hijack.example/");
  Until("the alert", arrived);
  Run();
  frmBHR& alert = application->forms().bhr.Touch();
  ExpectInStep(alert);
  EXPECT_TRUE(Widget("cmdBlock", &alert)->IsThisEnabled());
  const auto window = [&]() -> wxWindow* { return WindowOf(alert)->Window(); };
  // What somebody was typing elsewhere.
  robot.Press("a letter", window, 'A', wxMOD_NONE);
  Settle();
  EXPECT_TRUE(alert.IsLoaded());
  ClickIn("frmBHR", "cmdBlock");
  robot.AnswerBox("Yes");
  Until("its end", gone);
  Run();
  EXPECT_EQ(Home(), "http://mine.example/");

  SetHome("http://new.example/");
  Until("the alert", arrived);
  ClickIn("frmBHR", "cmdAllow");
  Until("its end", gone);
  Run();
  EXPECT_EQ(Home(), "http://new.example/");
  EXPECT_THAT(Read(baselines), HasSubstr("Start Page=http://new.example/"));
  EXPECT_EQ(main.browserSettings.lvwAllowedBlockedURLs.Count(), 2U);
  ExpectInStep(main);
}

}  // namespace
}  // namespace quarnel
