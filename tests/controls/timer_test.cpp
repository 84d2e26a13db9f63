#include "controls/timer.h"

#include <gtest/gtest.h>

#include "base/runtime_error.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using namespace std::chrono_literals;

class Timers : public ::testing::Test {
 protected:
  Timers() { form.Load(); }
  Handler Logs(const std::string& text) {
    return [this, text] { log += text; };
  }
  // What is logged meanwhile.
  std::string During(Milliseconds time) {
    host.Advance(time);
    return std::exchange(log, {});
  }

  TestHost host;
  Form form{host, "frmMain"};
  std::string log;
};

TEST_F(Timers, TickInTheOrderInWhichTheyFallDue) {
  Timer slow(form, "slow", 30ms, true);
  Timer fast(form, "fast", 10ms, true);
  Timer off(form, "off", 1ms, false);
  slow.Tick = Logs("s");
  fast.Tick = Logs("f");
  off.Tick = Logs("x");
  EXPECT_EQ(During(35ms), "ffsf");
  // One that was missed many times ticks once, as a window's timer does.
  host.virtualClock().Pass(100ms);
  host.DoEvents();
  EXPECT_EQ(log, "fs");
}

TEST_F(Timers, SwitchingOnAndANewIntervalStartAnew) {
  Timer timer(form, "timer", 10ms, true);
  timer.Tick = Logs("t");
  EXPECT_EQ(During(9ms), "");
  timer.SetEnabled(false);
  EXPECT_EQ(During(50ms), "");
  Control& plain = timer;
  plain.SetEnabled(true);
  EXPECT_EQ(During(9ms), "");
  EXPECT_EQ(During(1ms), "t");
  timer.SetInterval(20ms);
  EXPECT_EQ(During(19ms), "");
  timer.SetInterval(0ms);
  EXPECT_EQ(During(1h), "");
}

TEST_F(Timers, CountFromTheLoadingOfTheirForm) {
  Form late(host, "late");
  Timer timer(late, "timer", 10ms, true);
  timer.Tick = Logs("t");
  EXPECT_EQ(During(1min), "");
  late.Load();
  EXPECT_EQ(During(9ms), "");
  EXPECT_EQ(During(1ms), "t");
  late.Close(UnloadMode::kCode);
  EXPECT_EQ(During(1min), "");
}

TEST_F(Timers, GoOnAfterAnError) {
  Timer timer(form, "timer", 10ms, true);
  timer.Tick = [&] {
    log += 't';
    host.DoEvents();
    throw RuntimeError(ErrorNumber::kOverflow);
  };
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(IgnoringErrors([&] { host.Advance(10ms); }));
  EXPECT_EQ(log, "ttt");
}

TEST_F(Timers, MayEndAnyTimerInAHandler) {
  auto victim = std::make_unique<Timer>(form, "victim", 10ms, true);
  auto self = std::make_unique<Timer>(form, "self", 10ms, true);
  victim->Tick = Logs("v");
  self->Tick = [this, &self, &victim, kept = std::string(100, 'k')] {
    victim.reset();
    self.reset();
    log += kept[99];
  };
  victim->SetEnabled(false);
  victim->SetEnabled(true);  // falls due behind the other
  EXPECT_EQ(During(1s), "vk");
}

// What was left of an interval would be as long as the machine was quick.
TEST_F(Timers, BeginAnewOnAnotherClock) {
  Timer timer(form, "timer", 10ms, true);
  timer.Tick = Logs("t");
  EXPECT_EQ(During(4ms), "");
  VirtualClock other{DateTime()};
  other.Pass(1h);
  host.SetClock(other);
  EXPECT_EQ(During(9ms), "");
  EXPECT_EQ(During(1ms), "t");
}

// What is slept over leaves no gap behind: the ticks that come have their places in time.
TEST_F(Timers, SleepOverIdleTicks) {
  Timer timer(form, "timer", 10ms, true);
  Timer other(form, "other", 33ms, true);
  std::vector<int64_t> ticks;
  const Milliseconds start = host.clock().Ticks();
  const auto now = [&] { return host.clock().Ticks() - start; };
  Milliseconds busyFrom = 95ms;
  timer.Tick = [&] { ticks.push_back(now().count()); };
  timer.IdleFor = [&] { return busyFrom - now(); };
  host.Advance(125ms);
  EXPECT_EQ(ticks, (std::vector<int64_t>{100, 110, 120}));
  // Whatever a handler or a caller changes counts at once.
  busyFrom = 10s;
  other.Tick = [&] {
    if (now() > 600ms) busyFrom = 0ms;
  };
  host.Advance(525ms);
  EXPECT_EQ(ticks, (std::vector<int64_t>{100, 110, 120, 630, 640, 650}));
}

}  // namespace
}  // namespace quarnel
