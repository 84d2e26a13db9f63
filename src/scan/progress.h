#pragma once

#include <string>
#include <string_view>

#include "controls/simple_controls.h"

namespace quarnel {

// How far a bar stands, in percent rounded half to even; 0 for a bar that has no length.
int PercentOf(const ProgressBar& bar);

// A caption such as "Scanning Registry : 12% Completed.".
std::string PercentCaption(std::string_view phase, const ProgressBar& bar);

// A counter's caption raised by one; its new value.
int CountUp(Label& counter);

}  // namespace quarnel
