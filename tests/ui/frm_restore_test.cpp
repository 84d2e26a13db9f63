#include "ui/dialogs/frm_restore.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "core/paths.h"
#include "recovery/restore_point.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

class RestoreFormTest : public PlatformTest {
 protected:
  RestoreFormTest() { CreateFolders(files(), BackupFolder(machine())); }
  void Make(std::string_view name) {
    Write(Join({BackupFolder(machine()), std::string(name)}, "\\"));
  }
  frmRestore& Form() { return form_.Touch(); }

  TestHost host;
  Settings settings{registry(), "Quarnel"};
  ErrorLog log{files(), machine(), host, "Quarnel"};

 private:
  FormSlot<frmRestore> form_{[this] {
    return std::make_unique<frmRestore>(Services{platform(), host, settings, log});
  }};
};

TEST_F(RestoreFormTest, ListsAndChooses) {
  Make("37516.25_20080614102516_FILESBK.bkp");
  Make("37516.25_20080614102516_FILESBK_DET.bkp");
  Make("9_20240131235959_filesbk.BKP");
  Make("1_20240131235959_REGBK.bkp");
  host.answers = {Answer::kNo, Answer::kYes};
  host.players["frmRestore"] = [](quarnel::Form& shown) {
    auto& form = dynamic_cast<frmRestore&>(shown);
    ASSERT_EQ(form.lvwBackups.Count(), 2U);
    EXPECT_EQ(form.lvwBackups.At(0).text, "37516.25_20080614102516");
    EXPECT_EQ(form.lvwBackups.At(0).SubItem(1), "2008 June, 14 2008 June at 10:25:16 ");
    EXPECT_EQ(form.lvwBackups.At(1).SubItem(1), "2024 January, 31 2024 January at 23:59:59 ");
    // The newest point is selected at first.
    EXPECT_EQ(form.lvwBackups.SelectedRow(), 1U);
    form.cmdOK.ClickByUser();
    EXPECT_TRUE(form.IsLoaded());
    form.cmdOK.ClickByUser();
    EXPECT_FALSE(form.IsLoaded());
  };
  EXPECT_EQ(Form().Choose(), "9_20240131235959");
  EXPECT_EQ(host.messages[0].icon, MessageIcon::kInformation);
  host.players["frmRestore"] = [](quarnel::Form& shown) { shown.Close(UnloadMode::kUser); };
  EXPECT_EQ(Form().Choose(), "");
}

TEST_F(RestoreFormTest, DeletesAPointWithItsManifestAndKeepsItsCookies) {
  using namespace restore_point;
  for (const std::string_view ending :
       {kFiles, kRegistry, kFileDetails, kCookies, kCookieDetails, kManifest}) {
    Make("1_20240131235959" + std::string(ending));
  }
  frmRestore& form = Form();
  form.lvwBackups.SelectByUser(0);
  host.answers = {Answer::kNo, Answer::kYes};
  form.cmdDeleteBackup.ClickByUser();
  EXPECT_EQ(Names(BackupFolder(machine())).size(), 6U);
  form.cmdDeleteBackup.ClickByUser();
  EXPECT_EQ(Names(BackupFolder(machine())),
            (Strings{"1_20240131235959_COOKIESBK.bkp", "1_20240131235959_COOKIESBK_DET.bkp"}));
  EXPECT_TRUE(form.lvwBackups.Empty());
  form.cmdDeleteBackup.ClickByUser();
  form.cmdOK.ClickByUser();
  EXPECT_EQ(host.messages.back().text, "Restore Point not found on your PC.");
  form.cmdcancel.ClickByUser();
  EXPECT_FALSE(form.IsLoaded());
}

TEST_F(RestoreFormTest, ActsOnNothingThatIsNotSelected) {
  for (const char* point : {"1_20240131235959", "2_20240131235958", "3_20230131235959"}) {
    Make(std::string(point) + "_FILESBK.bkp");
  }
  // While the list grows nothing is selected.
  host.onEvents = [&] { EXPECT_FALSE(Form().cmdOK.Enabled() || Form().cmdDeleteBackup.Enabled()); };
  frmRestore& form = Form();
  host.onEvents = nullptr;
  form.lvwBackups.SelectByUser(1);
  std::vector<std::string> selected;
  for (int left = 3; left > 0; --left) {
    selected.push_back(form.lvwBackups.At(*form.lvwBackups.SelectedRow()).text);
    host.answers = {Answer::kYes};
    form.cmdDeleteBackup.ClickByUser();
  }
  EXPECT_EQ(selected, (Strings{"2_20240131235958", "3_20230131235959", "1_20240131235959"}));
  EXPECT_TRUE(form.cmdOK.Enabled() && form.cmdDeleteBackup.Enabled());
}

TEST_F(RestoreFormTest, EndsTheListAtAMonthThatIsNone) {
  Make("1_20241331235959_FILESBK.bkp");
  Make("2_20240131235959_FILESBK.bkp");
  EXPECT_EQ(Form().lvwBackups.Count(), 1U);
}

}  // namespace
}  // namespace quarnel
