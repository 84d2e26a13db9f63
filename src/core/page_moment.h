#pragma once

#include <string>
#include <string_view>

namespace quarnel {

// A stored moment as the pages show it, "Mar 05, 2024 at 02:30:00 PM". What is no date here, as
// written where dates look otherwise, is shown as it stands.
std::string PageMoment(std::string_view stored);

}  // namespace quarnel
