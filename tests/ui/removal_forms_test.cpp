#include "platform/registry.h"
#include "ui/application_fixture.h"

// The road from a scan to a restore, by the clicks of a user in the window and its dialogs.
namespace quarnel {
namespace {

class RemovalFormsTest : public ApplicationTest {
 protected:
  ~RemovalFormsTest() override {
    for (const char* folder : {"Backup", "Quarantine"}) {
      DeleteTree(files(), GetPathWithSlash(machine().ProgramFolder()) + folder);
    }
  }

  frmMain& ScanAndTick() {
    frmMain& main = Start();
    main.scan.ImgStartScanMouseMove.ClickByUser();
    CheckBox& all = main.results.chkSelectAllDetectedSpywares;
    if (!all.Checked()) all.ClickByUser();
    return main;
  }
  // Plays the user in a dialog, and notes that it was seen.
  template <typename FormType>
  void Play(const char* name, std::function<void(FormType&)> user) {
    host.players[name] = [this, name, user = std::move(user)](Form& form) {
      seen.emplace_back(name);
      user(dynamic_cast<FormType&>(form));
    };
  }
  void DeclineRestart() {
    Play<frmReBootMachine>("frmReBootMachine",
                           [](frmReBootMachine& form) { form.cmdClose.ClickByUser(); });
  }
  void Remove(frmMain& main) {
    DeclineRestart();
    main.results.cmdRemoveSpywares.ClickByUser();
  }
  std::vector<std::string> seen;
};

TEST_F(RemovalFormsTest, RestoresWhatWasRemovedPlainlyOrStrictly) {
  const std::string key = Key("Restored");
  Install({.registry = "Any,Threat,1,1,KEY:" + key + ",,\n",
           .files = "Any,Threat,1,31,Planted.txt,,7\n"});
  const FileTime time = FileTime(std::chrono::sys_days(std::chrono::days(12'500)));
  for (const bool strict : {false, true}) {
    // On a running system the tests may lie on another drive, to which all would plainly come back.
    if (!strict && planted[0] != machine().ProgramFolder()[0]) continue;
    Write(planted, "x");
    files().SetModified(planted, time);
    std::unique_ptr<RegistryKey> open;
    registry().Create(hive::kCurrentUser, key, open);
    open->Set("Value", RawFromValue(std::string("text")));
    frmMain& main = ScanAndTick();
    main.results.chkCreateRestore.SetValue(1);
    Remove(main);
    EXPECT_FALSE(Exists(planted));
    RegistryValue value;
    EXPECT_FALSE(QueryValue(registry(), hive::kCurrentUser, key, "Value", value));

    // The mode at the time of the restore counts.
    if (main.options.chkStrict.Checked() != strict) main.options.chkStrict.ClickByUser();
    EXPECT_EQ(settings.Get(setting::kStrict), strict ? 1 : 0);
    // Nothing comes back for a user who thinks better of it.
    Play<frmRestore>("frmRestore", [](frmRestore& form) { form.cmdcancel.ClickByUser(); });
    main.backup.cmdRestore.ClickByUser();
    EXPECT_FALSE(Exists(planted));
    Play<frmRestore>("frmRestore", [this](frmRestore& form) {
      form.lvwBackups.SelectByUser(form.lvwBackups.Count() - 1);
      host.answers = {Answer::kYes};
      form.cmdOK.ClickByUser();
    });
    main.backup.cmdRestore.ClickByUser();
    EXPECT_EQ(host.messages.back().text, "Restore process completed successfully.");
    ASSERT_TRUE(Exists(planted));
    EXPECT_EQ(files().Stat(planted)->modified == time, strict);
    // A plain restore loses the first value of a key that was deleted.
    EXPECT_EQ(QueryValue(registry(), hive::kCurrentUser, key, "Value", value), strict);
    // Once more, with everything in its place.
    main.backup.cmdRestore.ClickByUser();
    EXPECT_EQ(host.messages.back().text, "Restore process completed successfully.");
    EXPECT_EQ(Read(planted), "x");
    application.reset();
    host.virtualClock().Pass(std::chrono::seconds(1));
  }
}

// A second click comes as an event of the first one's work.
TEST_F(RemovalFormsTest, ClicksInTheMiddleOfARemovalOrARestoreStartNothing) {
  // A strict restore brings the file to its own drive, wherever the program lies.
  settings.Save(setting::kStrict, 1);
  frmMain& main = ScanAndTick();
  main.results.chkCreateRestore.SetValue(1);
  const auto clickAll = [&] {
    main.results.cmdRemoveSpywares.ClickByUser();
    main.removal.cmdRemoveSpyware2.ClickByUser();
    main.scan.ImgStartScanMouseMove.ClickByUser();
    main.backup.cmdRestore.ClickByUser();
  };
  host.onEvents = clickAll;
  Remove(main);
  EXPECT_THAT(seen, ElementsAre("frmReBootMachine"));
  EXPECT_FALSE(Exists(planted));
  seen.clear();
  Play<frmRestore>("frmRestore", [this](frmRestore& form) {
    ASSERT_EQ(form.lvwBackups.Count(), 1U);
    form.lvwBackups.SelectByUser(0);
    host.answers = {Answer::kYes};
    form.cmdOK.ClickByUser();
  });
  main.backup.cmdRestore.ClickByUser();
  host.onEvents = nullptr;
  EXPECT_THAT(seen, ElementsAre("frmRestore"));
  EXPECT_EQ(host.messages.size(), 2U);
  EXPECT_EQ(Read(planted), "x");
}

TEST_F(RemovalFormsTest, BrowserPromptSettlesTheQuestionAsItsBoxSays) {
  const struct {
    bool yes, skip;
    std::string options;  // always, close, skip
  } cases[] = {{true, false, "True False False"},
               {false, false, "True False False"},
               {true, true, "False True False"},
               {false, true, "False False True"}};
  for (const auto& test : cases) {
    Write(planted, "x");
    frmMain& main = ScanAndTick();
    main.options.optShowAlways.ClickByUser();
    seen.clear();
    Play<frmCloseIE>("frmCloseIE", [&](frmCloseIE& form) {
      EXPECT_EQ(form.Caption(), "Quarnel Warning");
      EXPECT_TRUE(Exists(planted));
      if (test.skip) form.chkSkipInFuture.ClickByUser();
      (test.yes ? form.cmdCloseIE : form.cmdcancel).ClickByUser();
    });
    Remove(main);
    EXPECT_THAT(seen, ElementsAre("frmCloseIE", "frmReBootMachine"));
    EXPECT_EQ(Join({Option("ShowAlways"), Option("CloseAllIEAndDonotShowIfFuture"),
                    Option("SkipClosingAndDonotShow")},
                   " "),
              test.options);
    EXPECT_FALSE(Exists(planted));
    application.reset();
  }
}

TEST_F(RemovalFormsTest, RestartPromptRestartsOrLetsTheRemovalEnd) {
  frmMain& main = ScanAndTick();
  Play<frmReBootMachine>("frmReBootMachine", [&](frmReBootMachine& form) {
    EXPECT_EQ(form.Caption(), "Restart Windows");
    EXPECT_EQ(form.lblRebootWarning.Caption(),
              "Quarnel has found a few signatures, which can be removed only after restarting the "
              "machine. After rebooting, please run Quarnel again to complete its process.");
    EXPECT_FALSE(main.removal.picRemoveSummary.Visible());
    // The button does nothing on a machine folder, and a line beside it says so.
    EXPECT_EQ(form.lblCannotRestart.Visible(), !platform().power().CanRestart());
    SetOption("Reboot Required", "True");
    form.cmdClose.ClickByUser();
  });
  main.results.cmdRemoveSpywares.ClickByUser();
  EXPECT_EQ(Option("Reboot Required"), "False");
  EXPECT_TRUE(main.removal.picRemoveSummary.Visible());
  const Label& lastResults = main.summary.rows[1].lblSystemSummaryValue;
  EXPECT_EQ(lastResults.Caption(), "1 threats detected");
  main.removal.cmdFinish.ClickByUser();
  EXPECT_FALSE(main.removal.picRemoveSummary.Visible());
  EXPECT_EQ(lastResults.Caption(), "No threats detected");
  // The label that told it has been used for the removal since.
  EXPECT_EQ(main.engine().scans().Outcome(), "Scanning completed.");
  // Nothing is left to remove, and a second click says so.
  main.results.cmdRemoveSpywares.ClickByUser();
  EXPECT_EQ(host.messages.back().text, "Nothing selected.");
}

TEST_F(RemovalFormsTest, SafeListHoldsATraceBackUntilItIsTakenOut) {
  frmMain& main = ScanAndTick();
  main.results.ImgAddToIgnoredListNormal.ClickByUser();
  EXPECT_EQ(host.messages.back().text,
            "Added selected spyware successfully to [Ignored Spyware] List.");
  EXPECT_EQ(Read(SafeListPath(machine())), planted + "^Threat^Threat\r\n");
  Remove(main);
  EXPECT_TRUE(Exists(planted));
  const auto open = [&](const std::function<void(frmIngnoredSpywares&)>& user) {
    Play<frmIngnoredSpywares>("frmIngnoredSpywares", [user](frmIngnoredSpywares& form) {
      EXPECT_EQ(form.Caption(), "Quarnel - Safe List");
      user(form);
      form.cmdDone.ClickByUser();
    });
  };
  open([this](frmIngnoredSpywares& form) {
    ASSERT_EQ(form.lvwIgnoredSpywares.Count(), 1U);
    EXPECT_EQ(form.lblCount.Caption(), "Total no of items : 1");
    // Without a tick nothing leaves.
    form.ImgRemoveMouseMove.ClickByUser();
    EXPECT_TRUE(Exists(SafeListPath(machine())));
    form.chkSelectAll.ClickByUser();
    form.ImgRemoveMouseMove.ClickByUser();
    EXPECT_EQ(form.lblCount.Caption(), "Total no of items : 0");
    EXPECT_FALSE(Exists(SafeListPath(machine())));
  });
  main.results.cmdIgnoredSpyware.ClickByUser();
  EXPECT_TRUE(main.results.lvwIgnoredSpywares.Empty());
  open([](frmIngnoredSpywares& form) { EXPECT_TRUE(form.lvwIgnoredSpywares.Empty()); });
  main.results.cmdIgnoredProcesses.ClickByUser();  // opens the same list
  EXPECT_THAT(seen, ElementsAre("frmIngnoredSpywares", "frmIngnoredSpywares"));
  application.reset();
  Remove(ScanAndTick());
  EXPECT_FALSE(Exists(planted));
}

}  // namespace
}  // namespace quarnel
