#include "platform/desktop.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace quarnel {

bool IsBrowserWindowClass(std::string_view className) {
  static constexpr std::array<std::string_view, 3> kClasses = {"ExploreWClass", "IEFrame",
                                                               "CabinetWClass"};
  return std::any_of(kClasses.begin(), kClasses.end(),
                     [className](std::string_view known) { return EqualText(className, known); });
}

bool Desktop::IsBrowserClass(std::string_view className) const {
  return IsBrowserWindowClass(className);
}

void CloseBrowserWindows(Desktop& desktop) {
  desktop.EnumWindows([&desktop](WindowId window, std::string_view className) {
    if (desktop.IsBrowserClass(className)) desktop.PostClose(window);
    return true;
  });
}

}  // namespace quarnel
