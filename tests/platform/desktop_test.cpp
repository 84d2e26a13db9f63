#include "platform/desktop.h"

#include "support/platform_fixture.h"

namespace quarnel {
namespace {

class DesktopTest : public PlatformTest {};

TEST_F(DesktopTest, AnnouncesThisProcessToOthers) {
  const auto other = OpenPlatform(machineFolder());
  Desktop& seer = other->desktop();
  Desktop& desktop = platform().desktop();
  EXPECT_FALSE(seer.FindWindow("TestClass", "A title"));

  desktop.Announce("TestClass", "A title");
  EXPECT_TRUE(seer.FindWindow("TestClass", "A title"));
  EXPECT_FALSE(seer.FindWindow("TestClass", "A tit"));
  EXPECT_FALSE(seer.FindWindow("OtherClass", "A title"));

  desktop.Announce("TestClass", "New \xC3\xA4");
  EXPECT_FALSE(seer.FindWindow("TestClass", "A title"));
  EXPECT_TRUE(seer.FindWindow("TestClass", "New \xC3\xA4"));

  desktop.Announce("TestClass", "");
  EXPECT_FALSE(seer.FindWindow("TestClass", "New \xC3\xA4"));
}

TEST_F(DesktopTest, TellsTwoAnnouncementsApart) {
  const auto other = OpenPlatform(machineFolder());
  platform().desktop().Announce("TestClass", "One");
  other->desktop().Announce("TestClass", "Two");
  const auto one = platform().desktop().FindWindow("TestClass", "One");
  const auto two = platform().desktop().FindWindow("TestClass", "Two");
  ASSERT_TRUE(one && two);
  EXPECT_NE(*one, *two);
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

TEST(BrowserWindows, AreAllAskedToClose) {
  struct Windows : Desktop {
    std::vector<WindowId> asked;
    void EnumWindows(const std::function<bool(WindowId, std::string_view)>& visit) override {
      WindowId id = 0;
      for (const std::string_view name : {"IEFrame", "Notepad", "CabinetWClass", "IEFrame"}) {
        if (!visit(++id, name)) return;
      }
    }
    void PostClose(WindowId window) override { asked.push_back(window); }
    std::optional<WindowId> FindWindow(std::string_view, std::string_view) override { return {}; }
    void BringForward(WindowId) override {}
    void Announce(std::string_view, std::string_view) override {}
  } windows;
  CloseBrowserWindows(windows);
  EXPECT_EQ(windows.asked, (std::vector<WindowId>{1, 3, 4}));
}

}  // namespace
}  // namespace quarnel
