// The alert of the memory shield, raised by a real process that starts while the program runs.

#include <gmock/gmock.h>

#include "base/text.h"
#include "core/own_files.h"
#include "signatures/md5.h"
#include "signatures/signature_files.h"
#include "support/victim.h"
#include "ui/application_fixture.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class MemoryAlertTest : public ApplicationTest {
 protected:
  MemoryAlertTest() {
    Install({.files = "Any,Threat,1,31,Planted.txt,,7\n",
             .programs = HexText(Md5Of(EmbeddedBytes("quarnel-sample-program"))) + "^11^Runner\n"});
    IgnoringErrors([&] { files().Delete(Declined()); });
  }
  ~MemoryAlertTest() override {
    IgnoringErrors([&] { files().Delete(Declined()); });
  }

  std::string Declined() {
    return OwnFileToRead(files(), machine(), SignaturePath(machine(), signature_file::kDeclined));
  }
  frmSpywareFoundAlert& alert() { return application->forms().spywareFoundAlert.Touch(); }

  // Starts the program, then one that is listed, and lets the user do `answer` in the alert.
  frmMain& Meet(const std::function<void()>& answer) {
    frmMain& main = Start();
    host.Advance(std::chrono::seconds(10));
    EXPECT_EQ(Done().alerts, 0U);
    victim.emplace(platform(), Path("listed.exe"));
    if (answer) host.players["frmSpywareFoundAlert"] = [answer](Form&) { answer(); };
    host.Advance(std::chrono::seconds(10));
    EXPECT_EQ(Done().alerts, 1U);
    EXPECT_FALSE(application->forms().spywareFoundAlert.IsLoaded());
    return main;
  }
  const MemoryShield::Done& Done() {
    return application->MainForm().engine().memoryShield().WhatItDid();
  }
  Strings FoundFiles() {
    Strings paths;
    for (const ListRow& row : application->MainForm().results.lvwFilesToBeDeleted.Rows()) {
      paths.push_back(row.text);
    }
    return paths;
  }

  std::optional<Victim> victim;
};

TEST_F(MemoryAlertTest, YesStartsAWholeScan) {
  host.screen = {.desktop = {.right = 1000, .bottom = 800},
                 .taskBar = {.right = 1000, .bottom = 30}};
  const frmMain& main = Meet([&] {
    EXPECT_EQ(alert().Caption(), "ALERT!!! - Quarnel");
    EXPECT_THAT(alert().lblSpywareName.Caption(),
                HasSubstr("LISTED.EXE is running in the memory and has been detected as Trojan."));
    EXPECT_TRUE(alert().TopMost());
    EXPECT_TRUE(alert().tmrBlink.Enabled());
    host.Advance(std::chrono::seconds(3));
    EXPECT_FALSE(alert().tmrPopupWindow.Enabled()) << "it has arrived";
    // Inside the wait no second tick comes.
    host.Advance(std::chrono::seconds(15));
    alert().ImgYesMouseMove.ClickByUser();
  });
  EXPECT_THAT(FoundFiles(), ElementsAre(ToUpper(victim->Path()), planted));
  EXPECT_EQ(main.scan.lblStatus.Caption(), "Scanning completed.");
  EXPECT_FALSE(Exists(Declined()));
}

TEST_F(MemoryAlertTest, NoDeclinesTheProgram) {
  Meet([&] { alert().ImgNoMouseMove.ClickByUser(); });
  EXPECT_THAT(FoundFiles(), IsEmpty());
  const ListView& list = application->forms().ingnoredProcesses->lvwIgnoredProcesses;
  ASSERT_EQ(list.Count(), 1U);
  EXPECT_TRUE(EqualText(list.At(0).text, HexText(Md5Of(Read(victim->Path())))));
  EXPECT_EQ(list.At(0).SubItem(1), "Trojan");
  EXPECT_EQ(Trim(list.At(0).SubItem(2)), "Runner");
  // It lives as long as the session.
  application->MainForm().Close(UnloadMode::kSessionEnd);
  EXPECT_FALSE(Exists(Declined()));
}

TEST_F(MemoryAlertTest, GoesAwayWithoutAnAnswer) {
  Meet(nullptr);
  EXPECT_THAT(FoundFiles(), IsEmpty());
  EXPECT_FALSE(Exists(Declined()));
}

TEST_F(MemoryAlertTest, AScanOfTheUsersOwnEndsIt) {
  int scans = 0;
  Meet([&] {
    application->MainForm().scan.ImgStartScanMouseMove.ClickByUser();
    ++scans;
  });
  EXPECT_EQ(scans, 1);
  EXPECT_THAT(FoundFiles(), ElementsAre(ToUpper(victim->Path()), planted));
  EXPECT_FALSE(Exists(Declined()));
}

TEST_F(MemoryAlertTest, ItsBoxSwitchesTheShieldOffAndOn) {
  const frmMain& main = Meet([&] {
    const frmMain& shown = application->MainForm();
    alert().chkMemorySheild.ClickByUser();
    EXPECT_EQ(settings.GetSetting("OptionAndSettings", "optMemorySheildOn", "-"), "0");
    EXPECT_FALSE(shown.options.chkMemorySheild.Checked());
    EXPECT_TRUE(shown.timers.tmrMemoryInspected.Enabled());
    alert().chkMemorySheild.ClickByUser();
    EXPECT_EQ(settings.GetSetting("OptionAndSettings", "optMemorySheildOn", "-"), "1");
    EXPECT_FALSE(shown.timers.tmrMemoryInspected.Enabled());
    alert().chkMemorySheild.ClickByUser();
    alert().Close(UnloadMode::kUser);
  });
  EXPECT_FALSE(main.options.chkMemorySheild.Checked());
  // The timer runs on and looks at nothing.
  const size_t inspected = Done().inspected;
  victim.reset();
  host.Advance(std::chrono::seconds(30));
  EXPECT_EQ(Done().inspected, inspected);
}

TEST(ProcessNameInTheAlert, LosesItsFirstFourCharacters) {
  const auto name = frmSpywareFoundAlert::ProcessName;
  EXPECT_EQ(name("C:\\X.EXE is running in"), ".EXE is ");
  EXPECT_EQ(name("C:\\FOUND.EXE is running"), "OUND.EXE is ");
  EXPECT_EQ(name("Threat found bad.exe running"), " bad.exe ");
  EXPECT_EQ(name("run running"), "");
  for (const char* caption : {"", "Details of which process is ruuning", "running"}) {
    EXPECT_EQ(ErrorOf([&] { name(caption); }), ErrorNumber::kInvalidCall) << caption;
  }
}

}  // namespace
}  // namespace quarnel
