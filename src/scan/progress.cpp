#include "scan/progress.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "base/text.h"

namespace quarnel {

int PercentOf(const ProgressBar& bar) {
  return bar.Max() == 0 ? 0 : ToInteger(bar.Value() / bar.Max() * 100);
}

void ShowPercent(Label& label, std::string_view before, int percent, std::string_view behind) {
  std::array<char, 12> digits{};
  const char* const end = std::to_chars(digits.begin(), digits.end(), percent).ptr;
  const std::string_view number(digits.data(), static_cast<size_t>(end - digits.data()));
  // A phase comes here with every line, and most lines change nothing.
  const std::string_view shown = label.Caption();
  if (shown.size() == before.size() + number.size() + behind.size() && shown.starts_with(before) &&
      shown.ends_with(behind) && shown.substr(before.size(), number.size()) == number) {
    return;
  }
  label.SetCaption(std::string(before).append(number).append(behind));
}

void IncrementProgressBar(ProgressBar& bar) {
  constexpr double kStep = 3;
  constexpr double kWrap = 99;
  const double value = bar.Value() + kStep;
  bar.SetValue(value >= kWrap ? 0 : value);
}

int CountUp(Label& counter) {
  const int value = ValLong(counter.Caption()) + 1;
  counter.SetCaption(std::to_string(value));
  return value;
}

void ShowMaximum(ProgressBar& bar, double maximum) { bar.SetMax(std::max(maximum, bar.Min())); }

}  // namespace quarnel
