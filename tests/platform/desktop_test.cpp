#include "platform/desktop.h"

#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

class DesktopTest : public PlatformTest {};

TEST_F(DesktopTest, AnnouncesThisProcessToOthers) {
  const auto other = OpenPlatform(machineFolder());
  Desktop& seer = other->desktop();
  Desktop& desktop = platform().desktop();
  EXPECT_FALSE(seer.FindWindow("TestClass", "A title"));

  desktop.Announce("TestClass", "A title");
  const auto window = seer.FindWindow("TestClass", "A title");
  ASSERT_TRUE(window);
  EXPECT_FALSE(seer.FindWindow("TestClass", "A tit"));
  EXPECT_FALSE(seer.FindWindow("TestClass", "a title"));
  EXPECT_FALSE(seer.FindWindow("OtherClass", "A title"));

  EXPECT_FALSE(desktop.TakeForwardRequest());
  // The clock of file times may move in such steps.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  seer.BringForward(*window);
  EXPECT_TRUE(Eventually([&] { return desktop.TakeForwardRequest(); }));
  EXPECT_FALSE(desktop.TakeForwardRequest());

  desktop.Announce("TestClass", "New \xC3\xA4");
  EXPECT_FALSE(seer.FindWindow("TestClass", "A title"));
  EXPECT_TRUE(seer.FindWindow("TestClass", "New \xC3\xA4"));
  seer.Announce("TestClass", "Two");
  ASSERT_TRUE(seer.FindWindow("TestClass", "Two"));
  EXPECT_NE(seer.FindWindow("TestClass", "Two"), seer.FindWindow("TestClass", "New \xC3\xA4"));

  desktop.Announce("TestClass", "");
  EXPECT_FALSE(seer.FindWindow("TestClass", "New \xC3\xA4"));
}

TEST(BrowserWindows, AreToldByTheirClass) {
  const std::pair<std::string_view, bool> cases[] = {{"IEFrame", true},
                                                     {"ieframe", true},
                                                     {"ExploreWClass", true},
                                                     {"CABINETWCLASS", true},
                                                     {"IEFrame2", false},
                                                     {"Progman", false},
                                                     {"", false}};
  for (const auto& [className, isBrowser] : cases) {
    EXPECT_EQ(IsBrowserWindowClass(className), isBrowser) << className;
  }
}

}  // namespace
}  // namespace quarnel
