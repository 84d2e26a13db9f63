#pragma once

namespace quarnel {

// A rectangle on the screen, in twips.
struct ScreenArea {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;

  bool operator==(const ScreenArea&) const = default;
};

// A twip is 1/1440 inch, and the screen is measured in pixels of 96 to the inch whatever its real
// resolution.
inline constexpr int kTwipsPerPixel = 15;

// What a window that places itself must know, in pixels. The rectangles of desktop and task bar are
// client rectangles: they begin at 0, so that right and bottom are width and height.
struct ScreenFacts {
  struct Size {
    int right = 0;
    int bottom = 0;
  };
  struct Point {
    int x = 0;
    int y = 0;
  };
  Size desktop{1024, 768};
  Size taskBar{1024, 30};
  Point mouse{0, 0};
};

}  // namespace quarnel
