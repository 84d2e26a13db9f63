// The alert about a real process, answered by hand.

#include <wx/display.h>

#include "base/text.h"
#include "core/own_files.h"
#include "display/display_fixture.h"
#include "signatures/md5.h"
#include "signatures/signature_files.h"
#include "support/victim.h"

namespace quarnel {
namespace {

class MemoryAlertTest : public DisplayTest {
 protected:
  MemoryAlertTest() {
    InstallProgramData(
        files(), machine(),
        {.files = "Any,Threat,1,31,Planted.txt,,7\n",
         .programs = HexText(Md5Of(EmbeddedBytes("quarnel-sample-program"))) + "^11^Runner\n"});
    IgnoringErrors([&] { DeleteOwnFile(files(), machine(), Declined()); });
  }
  ~MemoryAlertTest() override {
    IgnoringErrors([&] { DeleteOwnFile(files(), machine(), Declined()); });
  }

  std::string Declined() { return SignaturePath(machine(), signature_file::kDeclined); }
  bool HasDeclined() { return Exists(OwnFileToRead(files(), machine(), Declined())); }
  // Until the shield has seen that none runs, or the next one would be no change.
  void LookWithout(std::optional<Victim>& victim) {
    victim.reset();
    const wxLongLong start = wxGetUTCTimeMillis();
    Until("a look without it", [start] { return wxGetUTCTimeMillis() - start > 1500; });
    Run();
  }
  void UntilGone() {
    Until("the alert's end", [this] { return Shown("frmSpywareFoundAlert") == nullptr; });
  }
};

TEST_F(MemoryAlertTest, IsAnsweredByHand) {
  frmMain& main = Start();
  main.timers.tmrMemoryInspected.SetInterval(Milliseconds(200));
  const auto& done = main.engine().memoryShield().WhatItDid();
  std::optional<Victim> first(std::in_place, platform(), Path("first.exe"));
  const auto alert = [this] { return Shown("frmSpywareFoundAlert"); };
  Until("the alert", [&] { return alert() != nullptr; });
  // All of it is on the screen when it has come to rest.
  Until("its place", [&] {
    const auto* slide = alert() == nullptr ? nullptr : alert()->Find("tmrPopupWindow");
    return slide != nullptr && !slide->Enabled();
  });
  robot.Then(
      "its place", [] { return true; },
      [&] {
        host->Sync();
        const wxRect window = WindowOf(*alert())->Window()->GetScreenRect();
        EXPECT_TRUE(wxDisplay(0U).GetGeometry().Contains(window))
            << window.x << ' ' << window.y << ' ' << window.width << ' ' << window.height;
      });
  ClickIn("frmSpywareFoundAlert", "ImgNoMouseMove");
  UntilGone();
  Run();
  EXPECT_TRUE(HasDeclined());
  EXPECT_EQ(done.alerts, 1U);
  LookWithout(first);

  // One that comes over an open box can be answered at once.
  Answer answer = Answer::kCancel;
  const auto ask = [&] { answer = host->MsgBox({.text = "Stay", .title = "Box"}); };
  robot.Then(
      "the box", [] { return true; }, [&] { wxTheApp->CallAfter([&] { host->Act(ask); }); });
  Until("the box on the screen", [] { return Robot::Shown("MessageBox") != nullptr; });
  std::optional<Victim> next;
  robot.Then(
      "another program", [] { return true; }, [&] { next.emplace(platform(), Path("next.exe")); });
  Until("the alert over the box", [&] { return alert() != nullptr; });
  ClickIn("frmSpywareFoundAlert", "ImgNoMouseMove");
  UntilGone();
  robot.AnswerBox("OK");
  Until("the box's end", [&] { return answer == Answer::kOk; });
  Run();
  LookWithout(next);

  const Victim last(platform(), Path("last.exe"));
  ClickIn("frmSpywareFoundAlert", "ImgYesMouseMove");
  Until("the scan's end", [&] { return main.engine().scans().Outcome() == "Scanning completed."; });
  Run();
  EXPECT_TRUE(main.results.lvwFilesToBeDeleted.FindText(last.Path()));
}

}  // namespace
}  // namespace quarnel
