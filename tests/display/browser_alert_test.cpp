// The alert of the browser's guard, answered by hand.

#include "display/display_fixture.h"
#include "support/browser_on_machine.h"

namespace quarnel {
namespace {

TEST_F(DisplayTest, ChangeOfABrowsersSettingIsBlockedAndAllowed) {
  BrowserOnMachine browser(platform());
  browser.Set(0, "http://mine.example/");
  frmMain& main = Start();
  const auto gone = [&] { return Shown("frmBHR") == nullptr; };
  const auto change = [&](const std::string& page) {
    browser.Set(0, page);
    Until("the alert", [&] {
      const Form* alert = Shown("frmBHR");
      return alert != nullptr && !alert->Find("tmrPopupSignatureUpdate")->Enabled();
    });
    Run();
  };
  main.engine().browserSettings().Pending() = {.newValue = "a", .storedValue = "b"};
  // However long the address is, its alert and its question are on the screen.
  change("http://hijack.example/" + std::string(3000, 'x'));
  frmBHR& alert = application->forms().bhr.Touch();
  ExpectInStep(alert);
  EXPECT_TRUE(wxRect(wxGetDisplaySize()).Contains(WindowOf(alert)->Window()->GetScreenRect()));
  // What somebody was typing elsewhere.
  robot.Press(
      "a letter", [&] { return WindowOf(alert)->Window(); }, 'A', wxMOD_NONE);
  Settle();
  ClickIn("frmBHR", "cmdBlock");
  robot.AnswerBox("Yes");
  Until("its end", gone);
  Run();
  EXPECT_EQ(browser.Get(0), "http://mine.example/");
  change("http://new.example/");
  ClickIn("frmBHR", "cmdAllow");
  Until("its end", gone);
  Run();
  EXPECT_EQ(browser.Get(0), "http://new.example/");
  EXPECT_EQ(main.browserSettings.lvwAllowedBlockedURLs.Count(), 2U);
  ExpectInStep(main);
}

}  // namespace
}  // namespace quarnel
