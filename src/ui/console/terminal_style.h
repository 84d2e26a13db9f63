#pragma once

#include <string_view>

namespace quarnel {

// The sequences that colour text on a terminal; all empty where it shows none.
struct TerminalStyle {
  std::string_view header;
  std::string_view bad;
  std::string_view faint;
  std::string_view normal;
};

constexpr TerminalStyle StyleOf(bool colours) {
  return colours ? TerminalStyle{"\033[1m", "\033[1;31m", "\033[2m", "\033[0m"} : TerminalStyle{};
}

}  // namespace quarnel
