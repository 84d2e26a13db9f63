#include "platform/event_wait.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>

#include "base/runtime_error.h"
#include "support/event_token.h"

namespace quarnel {
namespace {

using namespace std::chrono_literals;

class EventWaitTest : public testing::Test {
 protected:
  // Waits until something was noted.
  std::string Noted() {
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (notes.empty() && std::chrono::steady_clock::now() < end) wait->Wait(1s);
    return std::exchange(notes, {});
  }
  std::string NotedAtOnce() {
    wait->Wait(50ms);
    return std::exchange(notes, {});
  }

  std::unique_ptr<EventWait> wait = MakeEventWait();
  SettableToken first;
  SettableToken second;
  std::string notes;
};

TEST_F(EventWaitTest, RunsWhatIsReadyUntilItWasTaken) {
  wait->Add(first.Token(), {}, [&] { notes += "first "; });
  const EventWait::Id id = wait->Add(second.Token(), {}, [&] {
    notes += "second ";
    second.Clear();
  });
  EXPECT_EQ(NotedAtOnce(), "");
  second.Set();
  EXPECT_EQ(Noted(), "second ");
  EXPECT_EQ(NotedAtOnce(), "");
  first.Set();
  EXPECT_EQ(Noted().substr(0, 6), "first ");
  EXPECT_EQ(Noted().substr(0, 6), "first ");
  first.Clear();
  NotedAtOnce();
  wait->Remove(id);
  second.Set();
  EXPECT_EQ(NotedAtOnce(), "");
  // The token may have another source now.
  wait->Add(second.Token(), {}, [&] {
    notes += "third ";
    second.Clear();
  });
  EXPECT_EQ(Noted(), "third ");
}

TEST_F(EventWaitTest, AHandlerMayEndSourcesAndWaitItself) {
  EventWait::Id self = 0;
  const EventWait::Id other = wait->Add(first.Token(), {}, [&] { notes += "never "; });
  self = wait->Add(second.Token(), {}, [&] {
    wait->Remove(other);
    wait->Remove(self);
    first.Set();
    bool inner = false;
    std::thread thread([&] { wait->Post([&] { inner = true; }); });
    while (!inner) wait->Wait(std::nullopt);
    thread.join();
    notes += "ended ";
  });
  second.Set();
  EXPECT_EQ(Noted(), "ended ");
  EXPECT_EQ(NotedAtOnce(), "");
  EXPECT_ANY_THROW(wait->Add(EventToken(-1), {}, [] {}));
}

TEST_F(EventWaitTest, PostedWorkComesInOrderAndWakesASleeper) {
  wait->Post([&] {
    notes += "1 ";
    wait->Post([&] { notes += "3 "; });
  });
  wait->Post([&] { notes += "2 "; });
  for (int i = 0; i < 5; ++i) wait->Wait(1ms);
  EXPECT_EQ(std::exchange(notes, {}), "1 2 3 ");
  std::thread thread([&] {
    std::this_thread::sleep_for(30ms);
    wait->Post([&] { notes += "woken "; });
  });
  wait->Wait(std::nullopt);
  thread.join();
  EXPECT_EQ(NotedAtOnce() + notes, "woken ");
}

// Whoever was woken finds it as it was, and the rest goes on.
TEST_F(EventWaitTest, AnErrorLeavesTheOthersAlone) {
  wait->Post([] { throw RuntimeError(ErrorNumber::kOverflow); });
  wait->Post([&] { notes += "next "; });
  EXPECT_THROW(Noted(), RuntimeError);
  EXPECT_EQ(Noted(), "next ");
}

}  // namespace
}  // namespace quarnel
