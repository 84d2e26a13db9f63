#include "platform/power.h"

#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using PowerTest = PlatformTest;

TEST_F(PowerTest, AMachineThatDeclinesGoesOn) {
  EXPECT_EQ(platform().power().CanRestart(), machineFolder().empty());
  EXPECT_FALSE(platform().power().Restart());
  EXPECT_FALSE(ReBootMachine(platform().power()));
}

}  // namespace
}  // namespace quarnel
