#include "base/date_time.h"

#include <gtest/gtest.h>

#include <vector>

namespace quarnel {
namespace {

using namespace std::chrono;

DateTime At(int y, unsigned m, unsigned d, int h = 0, int n = 0, int s = 0, int ms = 0) {
  return local_days(year(y) / month(m) / day(d)) + hours(h) + minutes(n) + seconds(s) +
         milliseconds(ms);
}

TEST(DateTime, TextFormsRoundTrip) {
  const struct {
    DateTime moment;
    std::string general, date, time;
  } cases[] = {
      {At(2026, 11, 22, 21, 54), "11/22/2026 9:54:00 PM", "11/22/2026", "9:54:00 PM"},
      {At(2026, 1, 2), "1/2/2026", "1/2/2026", "12:00:00 AM"},
      {At(2026, 1, 2, 12, 0, 1), "1/2/2026 12:00:01 PM", "1/2/2026", "12:00:01 PM"},
      {At(2024, 2, 29, 0, 5, 9), "2/29/2024 12:05:09 AM", "2/29/2024", "12:05:09 AM"},
      {At(1899, 12, 30, 13, 0), "1:00:00 PM", "12/30/1899", "1:00:00 PM"},
      {At(1899, 12, 30), "12:00:00 AM", "12/30/1899", "12:00:00 AM"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(GeneralDateText(c.moment), c.general);
    EXPECT_EQ(DateText(c.moment), c.date);
    EXPECT_EQ(TimeText(c.moment), c.time);
    EXPECT_EQ(ParseDate(c.general), c.moment) << c.general;
  }
  EXPECT_EQ(GeneralDateText(At(2026, 1, 2, 0, 0, 0, 999)), "1/2/2026");
}

TEST(DateTime, Patterns) {
  const DateTime moment = At(2026, 3, 8, 21, 4, 7, 900);
  // clang-format off
  const struct {
    std::string pattern, expected;
  } cases[] = {
      {"mmm dd, yyyy at hh:nn:ss AMPM", "Mar 08, 2026 at 09:04:07 PM"},
      {"mmm dd, yyyy at h:nn:ss AMPM", "Mar 08, 2026 at 9:04:07 PM"},
      {"yyyyMMddhhmmss", "20260308210407"}, {"hh:mm:ss", "21:04:07"}, {"hhmm", "2104"},
      {"MM/dd/yyyy", "03/08/2026"}, {"dddd, d mmmm yy", "Sunday, 8 March 26"}, {"ddd m", "Sun 3"},
      {"h:n:s", "21:4:7"}, {"", ""}, {"at \xC3\xA4", "at \xC3\xA4"},
  };
  // clang-format on
  for (const auto& c : cases) EXPECT_EQ(FormatDate(moment, c.pattern), c.expected) << c.pattern;
  EXPECT_EQ(FormatDate(At(2026, 3, 8, 0, 4), "h AMPM"), "12 AM");
  EXPECT_EQ(FormatDate(At(2026, 3, 8, 12, 4), "h AMPM"), "12 PM");
  EXPECT_DOUBLE_EQ(SecondsOfDay(moment), 75847.9);
}

TEST(DateTime, Reads) {
  const struct {
    std::string text;
    DateTime expected;
  } cases[] = {
      {" 11/22/2026  9:54 PM ", At(2026, 11, 22, 21, 54)},
      {"11-22-98  09:54PM", At(1998, 11, 22, 21, 54)},
      {"1/2/29", At(2029, 1, 2)},
      {"2026-03-08 21:54:00", At(2026, 3, 8, 21, 54)},
      {"21:54", At(1899, 12, 30, 21, 54)},
      {"9 pm", At(1899, 12, 30, 21, 0)},
      {"12:00:00 AM", At(1899, 12, 30)},
      {"0:30 AM", At(1899, 12, 30, 0, 30)},
  };
  for (const auto& c : cases) EXPECT_EQ(ParseDate(c.text), c.expected) << c.text;
  for (const std::string& text : std::vector<std::string>{
           "", "Null", "7", "Nov 22, 2026 at 09:54:00 PM", "2/29/2023", "13/1/2026", "1/2",
           "1/2-2026", "1/2/20265", "1/2/2026 x", "1/2/2026 9", "24:00", "13:00 PM", "9:60",
           "9:54:00:00", "9:", "1/2/2026 9:54 PM AM", std::string("1/2/2026\0", 9),
           std::string(100000, '9')}) {
    EXPECT_EQ(ParseDate(text), std::nullopt) << text.substr(0, 40);
  }
}

}  // namespace
}  // namespace quarnel
