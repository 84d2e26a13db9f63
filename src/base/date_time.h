#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

// Local date and time and their text forms, which are the English (US) ones on every system.
namespace quarnel {

// A moment of local time, to the millisecond. It is what every text form below shows.
using DateTime = std::chrono::local_time<std::chrono::milliseconds>;

// "11/22/2026 9:54:00 PM"; the date alone at midnight, and the time alone on 12/30/1899, the day
// that stands for none.
std::string GeneralDateText(DateTime moment);

// "11/22/2026".
std::string DateText(DateTime moment);

// "9:54:00 PM".
std::string TimeText(DateTime moment);

// Formats by tokens in any letter case: d, dd, ddd (Sun), dddd (Sunday); m, mm, mmm (Jan), mmmm
// (January); yy, yyyy; h, hh; n, nn; s, ss; AMPM. Hours are of a clock of twelve when AMPM stands
// in the pattern; m and mm are minutes when the token before them is h or hh. Any other character
// stands for itself.
std::string FormatDate(DateTime moment, std::string_view pattern);

// Reads a date, a time, or both in that order. A date is month, day and year, or a year of four
// digits, month and day, with "/" or "-" between them; years of two digits lie from 1930 to 2029. A
// time is "9:54 PM", "09:54PM", "21:54:00" or "9 PM". A time alone lies on 12/30/1899. Nothing for
// any other text.
std::optional<DateTime> ParseDate(std::string_view text);

// Seconds since midnight with their fraction.
double SecondsOfDay(DateTime moment);

}  // namespace quarnel
