#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

// Local date and time and their text forms, which are the English (US) ones on every system.
namespace quarnel {

// A moment of local time, to the millisecond. It is what every text form below shows.
using DateTime = std::chrono::local_time<std::chrono::milliseconds>;

// "11/22/2026 9:54:00 PM"; the date alone at midnight.
std::string GeneralDateText(DateTime moment);

// "11/22/2026".
std::string DateText(DateTime moment);

// "9:54:00 PM".
std::string TimeText(DateTime moment);

// Formats by the tokens that the program uses: mmm (Jan), mm (month of two digits), dd, yyyy, h, hh
// (of a clock of twelve hours when AMPM stands in the pattern), nn, ss, AMPM; any other character
// stands for itself.
std::string FormatDate(DateTime moment, std::string_view pattern);

// Reads a date, a time, or both in the forms above ("11/22/2026", "9:54 PM", "21:54:00",
// "Nov 22, 2026 at 09:54:00 PM" is not one of them). A time alone lies on 12/30/1899.
// Nothing for any other text.
std::optional<DateTime> ParseDate(std::string_view text);

// Seconds since midnight with their fraction.
double SecondsOfDay(DateTime moment);

}  // namespace quarnel
