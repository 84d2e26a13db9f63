#pragma once

#include <string_view>

#include "controls/simple_controls.h"

namespace quarnel {

// How far a bar stands, in percent rounded half to even; 0 for a bar that has no length.
int PercentOf(const ProgressBar& bar);

// Sets a caption such as "Scanning Registry : 12% Completed.": the text in front of the number, the
// number, the text behind it. Costs little while the number stays the same.
void ShowPercent(Label& label, std::string_view before, int percent, std::string_view behind);

// Sets a bar's maximum to what a signature file says of itself. A number below zero is torn, and no
// reason to end a scan.
void ShowMaximum(ProgressBar& bar, double maximum);

// Adds 3 to a bar, and wraps to 0 when it has reached 99: it moves, and tells nothing else.
void IncrementProgressBar(ProgressBar& bar);

// A counter's caption raised by one; its new value.
int CountUp(Label& counter);

}  // namespace quarnel
