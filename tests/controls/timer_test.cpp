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
  host.Advance(35ms);
  EXPECT_EQ(log, "ffsf");
  // One that was missed many times ticks once, as a window's timer does.
  log.clear();
  host.virtualClock().Pass(100ms);
  host.DoEvents();
  EXPECT_EQ(log.size(), 2u);
}

TEST_F(Timers, SwitchingOnAndANewIntervalStartAnew) {
  Timer timer(form, "timer", 10ms, true);
  timer.Tick = Logs("t");
  host.Advance(9ms);
  timer.SetEnabled(false);
  host.Advance(50ms);
  Control& plain = timer;
  plain.SetEnabled(true);
  host.Advance(9ms);
  EXPECT_EQ(log, "");
  host.Advance(1ms);
  EXPECT_EQ(log, "t");
  timer.SetInterval(20ms);
  host.Advance(19ms);
  EXPECT_EQ(log, "t");
  timer.SetInterval(0ms);
  host.Advance(1h);
  EXPECT_EQ(log, "t");
}

TEST_F(Timers, CountFromTheLoadingOfTheirForm) {
  Form late(host, "late");
  Timer timer(late, "timer", 10ms, true);
  timer.Tick = Logs("t");
  host.Advance(1min);
  late.Load();
  host.Advance(9ms);
  EXPECT_EQ(log, "");
  host.Advance(1ms);
  EXPECT_EQ(log, "t");
  late.Close(UnloadMode::kCode);
  host.Advance(1min);
  EXPECT_EQ(log, "t");
}

// A handler that processes events lets every other timer tick inside it, and itself never.
TEST_F(Timers, NestButNeverInsideTheirOwnHandler) {
  Timer outer(form, "outer", 10ms, true);
  Timer inner(form, "inner", 3ms, true);
  int depth = 0;
  outer.Tick = [&] {
    EXPECT_EQ(++depth, 1);
    log += '(';
    host.Advance(25ms);
    log += ')';
    --depth;
  };
  inner.Tick = Logs("i");
  host.Advance(12ms);
  EXPECT_EQ(log.substr(0, 4), "iii(");
  EXPECT_NE(log.find(')'), std::string::npos);
  EXPECT_EQ(std::count(log.begin(), log.end(), 'i'), 11) << log;
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
  host.Advance(1s);
  EXPECT_EQ(log, "vk");
}

TEST_F(Timers, KeepTheirRestOnAnotherClock) {
  Timer timer(form, "timer", 10ms, true);
  timer.Tick = Logs("t");
  host.Advance(4ms);
  VirtualClock other{DateTime()};
  other.Pass(1h);
  host.SetClock(other);
  host.Advance(5ms);
  EXPECT_EQ(log, "");
  host.Advance(1ms);
  EXPECT_EQ(log, "t");
}

}  // namespace
}  // namespace quarnel
