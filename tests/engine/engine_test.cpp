#include "engine/engine.h"

#include <gmock/gmock.h>

#include "core/paths.h"
#include "recovery/restore_point.h"
#include "scan/folders.h"
#include "support/platform_fixture.h"
#include "support/recording_window.h"
#include "support/signature_set.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;

// The engine and its pages on a bare form, and a machine with a signature of one planted file.
class EngineTest : public PlatformTest {
 protected:
  EngineTest() {
    settings.SaveSetting("Registry Status", "ResetValue", "x");
    settings.ResetRegistrySettings();
    InstallProgramData(files(), machine(), {.files = "Any,Threat,1,31,Planted.txt,,7\n"});
    WriteWholeFile(files(), planted, "x");
    // As at the start of the program: the buttons at rest.
    engine.scans().StopUnasked();
    engine.options().Load(true);
    window.asked.clear();
  }
  ~EngineTest() override {
    IgnoringErrors([&] { files().Delete(planted); });
    DeleteTree(files(), BackupFolder(machine()));
  }

  static constexpr int kProgramFiles = 31;
  std::string planted = GetFolder(machine(), kProgramFiles).front() + "Planted.txt";
  TestHost host;
  RecordingWindow window;
  Form form{host, "frmMain"};
  Pages pages{form};
  Settings settings{registry(), "Quarnel"};
  ErrorLog log{files(), machine(), host, "Quarnel"};
  Engine engine{{platform(), host, settings, log}, pages, window};
};

TEST_F(EngineTest, ScansAndRemovesWithoutAForm) {
  pages.scan.ImgStartScanMouseMove.ClickByUser();
  EXPECT_EQ(pages.scan.lblStatus.Caption(), "Scanning completed.");
  ASSERT_EQ(pages.results.lvwFilesToBeDeleted.Count(), 1U);
  EXPECT_FALSE(ScanRuns(pages.scan));
  EXPECT_FALSE(pages.summary.picSummary.Visible());
  EXPECT_THAT(window.asked, ElementsAre("select 0"));
  // Nothing else starts in the middle of the removal.
  pages.results.chkCreateRestore.SetValue(1);
  host.onEvents = [&] {
    pages.scan.ImgStartScanMouseMove.ClickByUser();
    pages.backup.cmdRestore.ClickByUser();
  };
  pages.results.cmdRemoveSpywares.ClickByUser();
  host.onEvents = nullptr;
  EXPECT_THAT(window.asked, ElementsAre("select 0", "select 0", "restart"));
  EXPECT_FALSE(files().Stat(planted));
  EXPECT_EQ(engine.recovery().LastRemoval()->Count(Fate::kRemoved), 1U);
  pages.removal.cmdFinish.ClickByUser();
  EXPECT_FALSE(pages.removal.picRemoveSummary.Visible());
  EXPECT_TRUE(pages.summary.picSummary.Visible());
  // A restore of what was removed, by the stem that the window gives.
  window.restorePoint = engine.recovery().LastRemoval()->backup->stem;
  pages.options.chkStrict.SetValue(1);
  pages.backup.cmdRestore.ClickByUser();
  EXPECT_TRUE(files().Stat(planted));
}

// The timer ticks inside a scan, too.
TEST_F(EngineTest, DueScanStartsNoneInARunningOne) {
  for (const auto& [key, value] : {std::pair{"Day", "7"}, std::pair{"Time", "2:30:02 PM"},
                                   std::pair{"chkAutomaticScanYesOrNo", "1"}}) {
    settings.SaveSetting("OptionAndSettings", key, value);
  }
  form.Show();
  engine.scheduler().LoadSchedule();
  host.Advance(Milliseconds(1500));
  int scans = 0;
  window.onAsk = [&](std::string_view what) { scans += what == "select 0"; };
  host.onEvents = [&] {
    host.onEvents = nullptr;
    host.Advance(Milliseconds(2000));
  };
  pages.scan.ImgStartScanMouseMove.ClickByUser();
  host.Advance(Milliseconds(2000));
  EXPECT_EQ(scans, 1);
  // The next day there is none in the way.
  host.virtualClock().Pass(std::chrono::hours(24) - Milliseconds(5000));
  window.asked.clear();
  host.Advance(Milliseconds(5000));
  EXPECT_EQ(scans, 2);
  EXPECT_THAT(window.asked, ElementsAre("page 0", "select 0"));
}

}  // namespace
}  // namespace quarnel
