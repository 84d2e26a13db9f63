#include <gtest/gtest.h>

#include <vector>

#include "platform/windows/unique_handle.h"

namespace quarnel {
namespace {

struct Note {
  static inline std::vector<int> closed;
  static int Invalid() { return -1; }
  void operator()(int handle) const { closed.push_back(handle); }
};
using Handle = UniqueHandle<int, Note>;

TEST(UniqueHandle, ClosesEachHandleOnce) {
  Note::closed.clear();
  {
    Handle one(1);
    Handle moved(std::move(one));
    EXPECT_FALSE(one.Valid());  // NOLINT(bugprone-use-after-move)
    Handle two(2);
    two = std::move(moved);
    EXPECT_EQ(Note::closed, std::vector{2});
    Handle& same = two;
    two = std::move(same);
    EXPECT_EQ(two.Get(), 1);
    *two.Receive() = 3;
    EXPECT_EQ(Note::closed, (std::vector{2, 1}));
    EXPECT_TRUE(two.Valid());
    Handle released(4);
    EXPECT_EQ(released.Release(), 4);
    const Handle invalid(-1);
    EXPECT_FALSE(invalid.Valid());
  }
  EXPECT_EQ(Note::closed, (std::vector{2, 1, 3}));
}

}  // namespace
}  // namespace quarnel
