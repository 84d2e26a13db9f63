#include "schedule/scheduler.h"

#include <gmock/gmock.h>

#include "support/platform_fixture.h"
#include "support/recording_window.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;

constexpr std::string_view kSection = "OptionAndSettings";

class frmSchedule : public Form {
 public:
  explicit frmSchedule(Host& host) : Form(host, "frmSchedule") {}
  SchedulePage page{*this};
  Timer tmrScheduler{*this, "tmrScheduler", Milliseconds(10), false};
};

// The test's clock stands at 2:30:00 PM on Tuesday, March 5, 2024.
class SchedulerTest : public PlatformTest {
 protected:
  SchedulerTest() {
    settings.Save(setting::kResetValue, "1");
    settings.ResetRegistrySettings();
    // A scan processes events for as long as it takes.
    form.tmrScheduler.Tick = [this] {
      if (!scheduler.TakeDueScan()) return;
      ++scans;
      host.Advance(scanTime);
    };
    form.Show();
  }

  std::string Stored(std::string_view key) {
    return settings.GetSetting(kSection, key, "(absent)");
  }
  void Store(std::string_view day, std::string_view time, std::string_view date,
             std::string_view on = "1") {
    settings.SaveSetting(kSection, "Day", day);
    settings.SaveSetting(kSection, "Time", time);
    settings.SaveSetting(kSection, "Date", date);
    settings.SaveSetting(kSection, "chkAutomaticScanYesOrNo", on);
  }
  bool ButtonsShow() const { return page.cmdProceed.Visible() && page.cmdDefaultSetting.Visible(); }

  TestHost host;
  RecordingWindow window;
  frmSchedule form{host};
  SchedulePage& page = form.page;
  Settings settings{registry(), "QuarnelTest"};
  ErrorLog log{files(), machine(), host, "QuarnelTest"};
  Scheduler scheduler{{.page = page,
                       .tmrScheduler = form.tmrScheduler,
                       .settings = settings,
                       .host = host,
                       .log = log,
                       .window = window}};
  int scans = 0;
  Milliseconds scanTime{2000};
};

TEST_F(SchedulerTest, FreshStoreShowsDailyAtMidnightAndOff) {
  scheduler.LoadSchedule();
  EXPECT_EQ(page.dtpScheduleTime.ValueText(), "12:00:00 AM");
  EXPECT_EQ(Stored("Time"), "12:00:00 AM");
  EXPECT_EQ(page.cmbDays.Text(), "Daily");
  EXPECT_FALSE(page.chkAutomaticScanYesOrNo.Checked());
  EXPECT_FALSE(page.dtpScheduleDate.Enabled());
  EXPECT_FALSE(ButtonsShow());
  page.cmdProceed.ClickByUser();
  EXPECT_EQ(Stored("Day"), "7");
  EXPECT_EQ(Stored("Date"), "Null");
  EXPECT_EQ(Stored("Time"), "12:00:00 AM");
  EXPECT_THAT(window.asked, ElementsAre("summary"));
  EXPECT_EQ(host.messages.back().title, "Schedule Settings");
}

TEST_F(SchedulerTest, TimeOfAStoreThatWasNeverAppliedComesBackAtEveryStart) {
  scheduler.LoadSchedule();
  frmSchedule second{host};
  second.Show();
  SchedulePage& again = second.page;
  Scheduler restarted{{.page = again,
                       .tmrScheduler = second.tmrScheduler,
                       .settings = settings,
                       .host = host,
                       .log = log,
                       .window = window}};
  restarted.LoadSchedule();
  EXPECT_EQ(again.dtpScheduleTime.ValueText(), "12:00:00 AM");
  again.dtpScheduleTime.SetByUser("3:00:00 PM");
  again.cmdDefaultSetting.ClickByUser();
  EXPECT_EQ(again.dtpScheduleTime.ValueText(), "12:00:00 AM");
  // Without a time the box goes out; ticked again, it stands beside one that can fall due.
  again.dtpScheduleTime.SetByUser("");
  again.chkAutomaticScanYesOrNo.ClickByUser();
  EXPECT_EQ(again.dtpScheduleTime.ValueText(), "2:30:00 PM");
  again.cmdProceed.ClickByUser();
  EXPECT_EQ(Stored("Time"), "2:30:00 PM");
}

TEST_F(SchedulerTest, StartsAtItsSecond) {
  struct Case {
    std::string_view name, day, time, date;
    int scans;
  };
  const Case cases[] = {
      {"daily", "7", "2:30:02 PM", "Null", 1},
      {"its weekday", "1", "2:30:02 PM", "Null", 1},
      {"the day before", "0", "2:30:02 PM", "Null", 0},
      {"Sunday", "6", "2:30:02 PM", "Null", 0},
      {"its date", "8", "2:30:02 PM", "3/5/2024", 1},
      {"the next day's date", "8", "2:30:02 PM", "3/6/2024", 0},
      {"a date with another time of day", "8", "2:30:02 PM", "3/5/2024 9:00:00 AM", 1},
      {"a time with a date", "7", "1/1/2020 2:30:02 PM", "Null", 1},
      {"a second that has passed", "7", "2:29:59 PM", "Null", 0},
      {"twelve hours off", "7", "2:30:02 AM", "Null", 0},
      {"a date that is not set", "8", "2:30:02 PM", "Null", 0},
      // A list without such an entry ends the load before the schedule is in force.
      {"a day beyond the list", "9", "2:30:02 PM", "Null", 0},
      {"a day below the list", "-3", "2:30:02 PM", "Null", 0},
      {"no date at all", "8", "2:30:02 PM", "soon", 0},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    using namespace std::chrono;
    host.virtualClock().SetNow(local_days(2024y / March / 5) + hours(14) + minutes(30));
    page.chkAutomaticScanYesOrNo.SetValue(0);
    Store(each.day, each.time, each.date);
    scans = 0;
    scheduler.LoadSchedule();
    page.chkAutomaticScanYesOrNo.SetValue(1);
    host.Advance(Milliseconds(1500));
    EXPECT_EQ(scans, 0);
    host.Advance(Milliseconds(1500));
    EXPECT_EQ(scans, each.scans);
  }
}

TEST_F(SchedulerTest, MissedSecondsAreLost) {
  Store("7", "2:30:02 PM", "Null");
  scheduler.LoadSchedule();
  // Busy for three seconds: no tick falls into the due one.
  host.virtualClock().Pass(Milliseconds(3000));
  host.Advance(Milliseconds(2000));
  EXPECT_EQ(scans, 0);
  // The next day it starts again.
  host.virtualClock().Pass(std::chrono::hours(24) - Milliseconds(6000));
  host.Advance(Milliseconds(4000));
  EXPECT_EQ(scans, 1);
}

TEST_F(SchedulerTest, ShortScanRunsOnceInItsSecond) {
  scanTime = Milliseconds(50);
  Store("7", "2:30:02 PM", "Null");
  scheduler.LoadSchedule();
  host.Advance(Milliseconds(5000));
  EXPECT_EQ(scans, 1);
  host.virtualClock().SetNow(*ParseDate("3/6/2024 2:30:01 PM"));
  host.Advance(Milliseconds(5000));
  EXPECT_EQ(scans, 2);
}

TEST_F(SchedulerTest, ResetBringsBackWhatIsStored) {
  for (const std::string_view on : {"0", "1"}) {
    Store("4", "2:30:02 PM", "Null", on);
    scheduler.LoadSchedule();
    page.chkAutomaticScanYesOrNo.ClickByUser();
    page.cmdDefaultSetting.ClickByUser();
    EXPECT_EQ(page.chkAutomaticScanYesOrNo.ValueText(), on);
    EXPECT_EQ(page.cmbDays.Text(), "Friday");
    EXPECT_EQ(form.tmrScheduler.Enabled(), on == "1");
    EXPECT_FALSE(ButtonsShow());
  }
}

TEST_F(SchedulerTest, TimerComparesWithWhatWasAppliedAndNotWithThePage) {
  Store("7", "2:30:02 PM", "Null");
  scheduler.LoadSchedule();
  page.dtpScheduleTime.SetByUser("3:00:00 PM");
  EXPECT_TRUE(ButtonsShow());
  host.Advance(Milliseconds(3000));
  EXPECT_EQ(scans, 1);
  page.cmdDefaultSetting.ClickByUser();
  EXPECT_EQ(page.dtpScheduleTime.ValueText(), "2:30:02 PM");
  EXPECT_FALSE(ButtonsShow());
  page.dtpScheduleTime.SetByUser("2:30:08 PM");
  page.cmdProceed.ClickByUser();
  EXPECT_EQ(Stored("Time"), "2:30:08 PM");
  host.Advance(Milliseconds(5000));
  EXPECT_EQ(scans, 2);
}

TEST_F(SchedulerTest, DateAndTimeAsksForWhatIsMissing) {
  Store("8", "2:30:02 PM", "Null", "0");
  scheduler.LoadSchedule();
  EXPECT_EQ(page.cmbDays.Text(), "Date & Time");
  EXPECT_FALSE(page.dtpScheduleDate.Value());
  settings.SaveSetting(kSection, "Day", "kept");
  page.cmdProceed.ClickByUser();
  EXPECT_THAT(host.Texts(), ElementsAre("Please define the particular date when you want to scan.",
                                        "Schedule settings have been saved."));
  EXPECT_EQ(Stored("Day"), "kept");
  page.dtpScheduleDate.SetValue(ParseDate("3/9/2024"));
  page.dtpScheduleTime.SetValue(std::nullopt);
  page.cmdProceed.ClickByUser();
  EXPECT_EQ(host.messages[2].text, "Please define the particular time when you want to scan.");
  page.dtpScheduleTime.SetValue(ParseDate("1:00:00 AM"));
  page.cmdProceed.ClickByUser();
  EXPECT_EQ(Stored("Day"), "8");
  EXPECT_EQ(Stored("Date"), "3/9/2024");
  EXPECT_FALSE(form.tmrScheduler.Enabled());
}

TEST_F(SchedulerTest, DaysAndBoxSwitchThePickers) {
  scheduler.LoadSchedule();
  page.lblEnableAutoScan.ClickByUser();
  EXPECT_TRUE(page.chkAutomaticScanYesOrNo.Checked());
  EXPECT_TRUE(form.tmrScheduler.Enabled());
  EXPECT_TRUE(ButtonsShow());
  page.cmbDays.SetByUser("Date & Time");
  EXPECT_TRUE(page.dtpScheduleDate.Enabled());
  EXPECT_EQ(page.dtpScheduleDate.ValueText(), "03/05/2024");
  page.cmbDays.SetByUser("Friday");
  EXPECT_FALSE(page.dtpScheduleDate.Enabled());
  EXPECT_TRUE(page.dtpScheduleTime.Enabled());
  // A picker without a value switches the schedule off.
  page.dtpScheduleTime.SetByUser("");
  EXPECT_FALSE(page.chkAutomaticScanYesOrNo.Checked());
  EXPECT_EQ(page.cmbDays.Text(), "Monday");
  EXPECT_FALSE(page.cmbDays.Enabled());
  EXPECT_FALSE(form.tmrScheduler.Enabled());
  page.lblEnableAutoScan.ClickByUser();
  page.lblEnableAutoScan.ClickByUser();  // only ever ticks
  EXPECT_TRUE(page.chkAutomaticScanYesOrNo.Checked());
  page.cmbDays.SetByUser("Tuesday");
  EXPECT_EQ(page.dtpScheduleTime.ValueText(), "2:30:00 PM");
}

TEST_F(SchedulerTest, DateThatThePickerRefusesEndsTheLoad) {
  Store("3", "2:30:02 PM", "1/1/1500");
  scheduler.LoadSchedule();
  EXPECT_EQ(page.cmbDays.ListIndex(), -1);
  EXPECT_FALSE(page.chkAutomaticScanYesOrNo.Checked());
  EXPECT_THAT(ReadWholeFile(files(), log.Path()), ::testing::HasSubstr("LoadSchedule in frmMain"));
}

// Whoever looks at the clock a hundred times a second keeps a core busy.
TEST_F(SchedulerTest, SleepsOverTheTicksBeforeItsSecond) {
  Store("7", "3:30:00 PM", "Null");
  scheduler.LoadSchedule();
  form.tmrScheduler.IdleFor = [this] { return scheduler.UntilScheduledSecond(); };
  int ticks = 0;
  form.tmrScheduler.Tick = [&, tick = form.tmrScheduler.Tick] {
    ++ticks;
    tick();
  };
  host.Advance(std::chrono::hours(1) - Milliseconds(1));
  EXPECT_EQ(scans, 0);
  EXPECT_LE(ticks, 2 * 3600);
  host.Advance(Milliseconds(10));
  EXPECT_EQ(scans, 1);
  // Another time of day counts from now on.
  ticks = 0;
  page.dtpScheduleTime.SetValue(host.clock().Now() + Milliseconds(1500));
  scheduler.ApplySchedule();
  host.Advance(std::chrono::seconds(3));
  EXPECT_EQ(scans, 2);
  EXPECT_LE(ticks, 120);
}

}  // namespace
}  // namespace quarnel
