#include "ui/alerts/slide_in.h"

#include "base/text.h"
#include "controls/host.h"

namespace quarnel {
namespace {

constexpr int kGap = 100;

int Vertical(int pixels) { return ToLong(pixels * kVerticalTwips); }
int Horizontal(int pixels) { return ToLong(pixels * kHorizontalTwips); }

int Target(const ScreenFacts& screen, int height) {
  return ToLong(screen.desktop.bottom * kVerticalTwips - (height + kGap));
}

}  // namespace

SlidePlan AlertPlan(const ScreenFacts& screen, int width, int height) {
  return {.left = Horizontal(screen.desktop.right - width / kTwipsPerPixel),
          .top = Vertical(screen.desktop.bottom - screen.taskBar.bottom),
          .target = Target(screen, height)};
}

SlidePlan MenuPlan(const ScreenFacts& screen, int width, int height) {
  const double rightEdge = screen.desktop.right * kHorizontalTwips;
  const double atMouse = screen.mouse.x * kHorizontalTwips;
  const bool fits = atMouse + width <= rightEdge;
  return {.left = ToLong(fits ? atMouse : rightEdge - (width + kGap)),
          .top = Vertical(screen.mouse.y),
          .target = Target(screen, height)};
}

bool MouseOver(const ScreenFacts& screen, const ScreenArea& place) {
  const auto within = [](int pixel, int start, int length) {
    const int twips = pixel * kTwipsPerPixel;
    return twips >= start && twips <= start + length;
  };
  return within(screen.mouse.x, place.left, place.width) &&
         within(screen.mouse.y, place.top, place.height);
}

void MoveTop(Form& form, int twips) {
  ScreenArea place = form.Place();
  place.top += twips;
  form.SetPlace(place);
}

void SlideIn::Start() {
  ScreenArea place = form_.Place();
  const SlidePlan plan = AlertPlan(form_.host().Screen(), place.width, place.height);
  place.left = plan.left;
  place.top = plan.top;
  mPopupTarget_ = plan.target;
  form_.SetPlace(place);
  form_.Show();
  SetTopMostWindow(form_, true);
  timer_.SetEnabled(true);
}

bool SlideIn::Tick() {
  form_.ZOrder();
  if (SlideArrived(form_.Place().top, mPopupTarget_)) {
    timer_.SetEnabled(false);
    return true;
  }
  MoveTop(form_, -step_);
  return false;
}

}  // namespace quarnel
