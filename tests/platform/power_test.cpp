#include "platform/power.h"

#include <string>

#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using PowerTest = PlatformTest;

TEST_F(PowerTest, AMachineThatDeclinesGoesOn) {
  EXPECT_FALSE(platform().power().Restart());
  EXPECT_FALSE(ReBootMachine(platform().power()));
}

TEST(ReBootMachine, AsksForTheRestartWhateverTheRightsAre) {
  struct : Power {
    bool AdjustToken() override {
      calls += "right ";
      return hasRight;
    }
    bool Restart() override {
      calls += "restart ";
      return answer;
    }
    std::string calls;
    bool hasRight = false;
    bool answer = true;
  } power;
  EXPECT_TRUE(ReBootMachine(power));
  power.hasRight = true;
  power.answer = false;
  EXPECT_FALSE(ReBootMachine(power));
  EXPECT_EQ(power.calls, "right restart right restart ");
}

}  // namespace
}  // namespace quarnel
