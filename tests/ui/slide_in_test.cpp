#include "ui/alerts/slide_in.h"

#include <gtest/gtest.h>

#include "support/test_host.h"

namespace quarnel {
namespace {

TEST(SlideIn, PlacesAlertsAtTheLowerRight) {
  struct Case {
    ScreenFacts screen;
    int width, height;
    SlidePlan plan;
  };
  const Case cases[] = {
      // 1024x768 with a bar of 30: Top = 738 * 14.5, Left = (1024 - 300) * 14.7.
      {{.desktop = {1024, 768}, .taskBar = {1024, 30}}, 4500, 3000, {10643, 10701, 8036}},
      // A bar at the side or at the top counts by its height all the same.
      {{.desktop = {1920, 1080}, .taskBar = {62, 1080}}, 4500, 3000, {23814, 0, 12560}},
      {{.desktop = {800, 600}, .taskBar = {0, 0}}, 13500, 9000, {-1470, 8700, -400}},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(AlertPlan(each.screen, each.width, each.height), each.plan)
        << each.screen.desktop.right;
  }
}

TEST(SlideIn, PlacesTheMenuAtTheMouse) {
  struct Case {
    ScreenFacts::Point mouse;
    SlidePlan plan;
  };
  // The desktop ends at 15052.8 twips: 3300 fit up to 11752.8.
  const Case cases[] = {{{0, 0}, {0, 0, 6436}},
                        {{500, 760}, {7350, 11020, 6436}},
                        {{799, 760}, {11745, 11020, 6436}},
                        {{800, 760}, {11653, 11020, 6436}},
                        {{1020, 760}, {11653, 11020, 6436}}};
  for (const Case& each : cases) {
    EXPECT_EQ(MenuPlan({.mouse = each.mouse}, 3300, 4600), each.plan) << each.mouse.x;
  }
}

TEST(SlideIn, TellsTheMouseOverAWindow) {
  const ScreenArea place{.left = 1500, .top = 3000, .width = 150, .height = 300};
  const std::pair<ScreenFacts::Point, bool> cases[] = {{{100, 200}, true},  {{110, 220}, true},
                                                       {{99, 210}, false},  {{111, 210}, false},
                                                       {{105, 199}, false}, {{105, 221}, false}};
  for (const auto& [mouse, over] : cases) {
    EXPECT_EQ(MouseOver({.mouse = mouse}, place), over) << mouse.x << ' ' << mouse.y;
  }
}

}  // namespace
}  // namespace quarnel
