#include "scan/progress.h"

#include "base/text.h"

namespace quarnel {

int PercentOf(const ProgressBar& bar) {
  return bar.Max() == 0 ? 0 : ToInteger(bar.Value() / bar.Max() * 100);
}

std::string PercentCaption(std::string_view phase, const ProgressBar& bar) {
  std::string caption(phase);
  caption.append(" : ").append(std::to_string(PercentOf(bar))).append("% Completed.");
  return caption;
}

int CountUp(Label& counter) {
  const int value = ValLong(counter.Caption()) + 1;
  counter.SetCaption(std::to_string(value));
  return value;
}

}  // namespace quarnel
