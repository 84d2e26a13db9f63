#pragma once

#include "controls/form.h"
#include "controls/screen.h"
#include "controls/timer.h"

// How the small windows slide up from the task bar. Pixels become twips by 14.5 vertically and 14.7
// horizontally, and not by 15: that leaves the windows a little away from the screen's edges.
namespace quarnel {

inline constexpr double kVerticalTwips = 14.5;
inline constexpr double kHorizontalTwips = 14.7;

// Where a slide begins and ends, in twips.
struct SlidePlan {
  int left = 0;
  int top = 0;
  int target = 0;  // the Top at which it ends

  bool operator==(const SlidePlan&) const = default;
};

// An alert: from the upper edge of the task bar, at the right edge of the desktop. `width` and
// `height` are the window's, in twips.
SlidePlan AlertPlan(const ScreenFacts& screen, int width, int height);

// The menu of the tray icon: from the mouse.
SlidePlan MenuPlan(const ScreenFacts& screen, int width, int height);

// Whether a slide upwards has arrived.
constexpr bool SlideArrived(int top, int target) { return top <= target; }

// Every slide downwards ends here, whatever the screen's height: on a tall screen the window goes
// away while it is still in view.
inline constexpr int kSlideDownEnd = 11167;
inline constexpr int kSlideDownStep = 40;
constexpr bool SlidDown(int top) { return top > kSlideDownEnd; }

// Whether the mouse is over a window.
bool MouseOver(const ScreenFacts& screen, const ScreenArea& place);

// What an alert moves at each tick, in twips.
inline constexpr int kAlertStep = 500;

// The slide of one alert, driven by a timer of its form.
class SlideIn {
 public:
  // `step` is what the window moves at each tick, in twips.
  SlideIn(Form& form, Timer& timer, int step) : form_(form), timer_(timer), step_(step) {}

  // Places the form, shows it above all windows and starts the timer.
  void Start();
  // The timer's tick: true when the form has arrived, which stops the timer.
  bool Tick();

 private:
  Form& form_;
  Timer& timer_;
  int step_;
  int mPopupTarget_ = 0;
};

// Moves a form vertically, in twips.
void MoveTop(Form& form, int twips);

}  // namespace quarnel
