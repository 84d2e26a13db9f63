#include "engine/engine.h"

#include <gmock/gmock.h>

#include "core/paths.h"
#include "recovery/restore_point.h"
#include "support/program_fixture.h"
#include "support/recording_window.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;

// The engine and its pages on a bare form, and a machine with a signature of one planted file.
class EngineTest : public ProgramTest {
 protected:
  EngineTest() {
    // As at the start of the program: the buttons at rest.
    engine.scans().StopUnasked();
    engine.options().Load(true);
    window.asked.clear();
  }

  TestHost host;
  RecordingWindow window;
  Form form{host, "frmMain"};
  Pages pages{form};
  ErrorLog log{files(), machine(), host, "Quarnel"};
  Engine engine{{platform(), host, settings, log}, pages, window};
};

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
