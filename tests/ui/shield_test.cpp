#include "controls/list_view.h"
#include "protection/kill_bits.h"
#include "signatures/complement.h"
#include "ui/application_fixture.h"

namespace quarnel {
namespace {

// The ActiveX shield knows two controls and, at the end, a name without an identifier.
class ShieldTest : public ApplicationTest {
 protected:
  ShieldTest() {
    Write(path, ComplementBytes("A,{1}\r\n\"B, b\",{2}\r\nlast"));
    RemoveKeys();
    Play("frmImmunize");
    Play("frmDeImmunize");
  }
  ~ShieldTest() override { RemoveKeys(); }

  void RemoveKeys() {
    for (const char* id : {"{1}", "{2}"}) DeleteKey(registry(), hive::kLocalMachine, kKey + id);
  }
  // A user who reads the dialog and presses its button.
  void Play(const std::string& name) {
    host.players[name] = [this](Form& form) {
      auto& dialog = dynamic_cast<ShieldDialog&>(form);
      shown.push_back(dialog.lblStatus.Caption());
      if (dialog.cmdcancel.Enabled()) return dialog.cmdcancel.ClickByUser();
      form.Close(UnloadMode::kUser);
    };
  }
  // Presses the button once the dialog's status is this.
  template <typename FormType>
  void CancelAt(FormSlot<FormType>& slot, const std::string& status) {
    host.onEvents = [this, &slot, status] {
      if (!slot.IsLoaded() || slot->lblStatus.Caption() != status) return;
      host.onEvents = nullptr;
      slot->cmdcancel.ClickByUser();
    };
  }
  std::string Flags(const char* id) {
    return QueryText(registry(), hive::kLocalMachine, kKey + id, "Compatibility Flags");
  }
  std::vector<std::string> Bits() { return {Flags("{1}"), Flags("{2}")}; }
  std::string Stored() { return Option("Sheild"); }

  const std::string kKey = "Software\\Microsoft\\Internet Explorer\\ActiveX Compatibility\\";
  std::string path = DataFolder(machine()) + "QNLImmData.dll";
  std::vector<std::string> shown;
};

TEST_F(ShieldTest, BoxAndButtonsApplyAndRemove) {
  frmMain& main = Start();
  // An end of an earlier, longer copy is no part of the list.
  Write(path + ".tmp", std::string(99, 'x'));
  main.options.chkSelfDownloadingActivex.ClickByUser();
  EXPECT_THAT(Bits(), ElementsAre("1024", "1024"));
  EXPECT_EQ(Stored(), "1");
  EXPECT_FALSE(Exists(path + ".tmp"));
  main.options.cmdImmunize.ClickByUser();
  EXPECT_THAT(Bits(), ElementsAre("1024", "1024"));

  // The box loses its tick, and its own click shows no second dialog.
  main.options.cmdDeImmunize.ClickByUser();
  EXPECT_THAT(Bits(), ElementsAre("", ""));
  EXPECT_FALSE(main.options.chkSelfDownloadingActivex.Checked());
  EXPECT_EQ(Stored(), "0");
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(registry().Open(hive::kLocalMachine, kKey + "{1}", registry_access::kRead, key),
            RegistryStatus::kSuccess);
  main.options.chkSelfDownloadingActivex.ClickByUser();
  main.options.chkSelfDownloadingActivex.ClickByUser();
  EXPECT_THAT(Bits(), ElementsAre("", ""));
  EXPECT_THAT(shown, ElementsAre("Shield applied.", "Shield applied.", "Shield removed.",
                                 "Shield applied.", "Shield removed."));
}

TEST_F(ShieldTest, CancelKeepsWhatWasDone) {
  frmMain& main = Start();
  Forms& forms = application->forms();
  CancelAt(forms.immunize, "Shielding B, b...");
  main.options.cmdImmunize.ClickByUser();
  EXPECT_THAT(Bits(), ElementsAre("1024", ""));
  EXPECT_EQ(Stored(), "0");
  EXPECT_FALSE(forms.immunize.IsLoaded());
  EXPECT_THAT(shown, ElementsAre()) << "a form that its load ends is not shown";
  // The box's click stores what it asked for, whatever became of it.
  CancelAt(forms.immunize, "Shielding B, b...");
  main.options.chkSelfDownloadingActivex.ClickByUser();
  EXPECT_EQ(Stored(), "1");

  main.options.cmdImmunize.ClickByUser();
  CancelAt(forms.deImmunize, "removing shielding from B, b...");
  main.options.cmdDeImmunize.ClickByUser();
  EXPECT_THAT(Bits(), ElementsAre("", "1024"));
  EXPECT_EQ(Stored(), "0");
  EXPECT_THAT(shown, ElementsAre("Shield applied.", "removing shielding from B, b..."));
  // A window that is closed in the middle was cancelled, too.
  host.onEvents = [&] {
    if (forms.immunize.IsLoaded()) forms.immunize->Close(UnloadMode::kUser);
  };
  settings.Save(setting::kSheild, 1);
  main.options.cmdImmunize.ClickByUser();
  EXPECT_EQ(Stored(), "0");
}

TEST_F(ShieldTest, MissingFileIsAskedForAndStoresNothing) {
  frmMain& main = Start();
  files().Delete(path);
  host.answers = {Answer::kNo, Answer::kYes};
  main.options.chkSelfDownloadingActivex.ClickByUser();
  EXPECT_EQ(host.messages.back().text,
            "QNLImmData.dll is missing or it has been corrupted. Would you like to download this "
            "signature?");
  EXPECT_TRUE(main.options.chkSelfDownloadingActivex.Checked());
  EXPECT_FALSE(main.timers.tmrBlink.Enabled());
  EXPECT_FALSE(main.tabs.PicSixthTabLiveUpdate.Visible());
  main.options.chkSelfDownloadingActivex.ClickByUser();
  EXPECT_TRUE(main.timers.tmrBlink.Enabled());
  EXPECT_TRUE(main.tabs.PicSixthTabLiveUpdate.Visible());
  EXPECT_TRUE(main.tabs.imgMainTabC[4]->Visible());
  EXPECT_EQ(Stored(), "(absent)");
  EXPECT_THAT(shown, ElementsAre());
}

TEST_F(ShieldTest, LoadingTheBoxWorksNothing) {
  settings.Save(setting::kSheild, 1);
  EXPECT_TRUE(Start().options.chkSelfDownloadingActivex.Checked());
  EXPECT_THAT(shown, ElementsAre());
  EXPECT_THAT(Bits(), ElementsAre("", ""));
}

TEST_F(ShieldTest, ListOfTheControls) {
  Form form(host, "frmTest");
  ListView list(form, "lvwSpywares", {"Name", "CLSID"});
  ErrorLog log(files(), machine(), host, "Quarnel");
  const Services services{platform(), host, settings, log};
  Write(path + ".tmp", "A,{1}\r\nlast");
  LoadSpywaresInListview(services, list, path + ".tmp");
  ASSERT_EQ(list.Count(), 2u);
  EXPECT_EQ(list.At(0).text + list.At(0).tag, "A{1}");
  EXPECT_EQ(list.At(0).SubItem(1), "{1}");
  EXPECT_EQ(list.At(1).text + list.At(1).tag, "last");
  files().Delete(path + ".tmp");
}

}  // namespace
}  // namespace quarnel
