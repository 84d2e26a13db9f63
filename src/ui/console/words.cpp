#include "ui/console/words.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "ui/console/command_error.h"
#include "ui/console/display_text.h"

namespace quarnel {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Reads the quoted word whose quote stands at `position` and moves behind its end.
std::string ReadQuoted(std::string_view line, size_t& position) {
  std::string text;
  for (++position; position < line.size(); ++position) {
    const char c = line[position];
    if (c == '"') {
      ++position;
      if (position < line.size() && !IsBlank(line[position])) {
        throw CommandError{"a blank is missing behind a quoted word"};
      }
      return text;
    }
    const bool escape = c == '\\' && position + 1 < line.size() &&
                        (line[position + 1] == '"' || line[position + 1] == '\\');
    if (escape) ++position;
    text += line[position];
  }
  throw CommandError{"a quote does not end"};
}

}  // namespace

Words::Words(std::string_view line) : line_(line) {
  for (size_t i = 0; i < line.size();) {
    if (IsBlank(line[i])) {
      ++i;
      continue;
    }
    if (line[i] == '#') {
      line_.resize(i);
      return;
    }
    Word word{.begin = i};
    if (line[i] == '"') {
      word.text = ReadQuoted(line, i);
    } else {
      while (i < line.size() && !IsBlank(line[i])) word.text += line[i++];
    }
    words_.push_back(std::move(word));
  }
}

const std::string& Words::Next() {
  if (!More()) throw UsageError();
  return words_[next_++].text;
}

std::string Words::Rest() {
  if (!More()) throw UsageError();
  const Word& first = words_[next_];
  const bool single = next_ + 1 == words_.size();
  next_ = words_.size();
  return single ? first.text : line_.substr(first.begin);
}

void Words::End() const {
  if (More()) throw UsageError();
}

std::optional<size_t> ParseCount(std::string_view text) {
  if (text.empty() || text.size() > 9) return std::nullopt;
  size_t count = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    count = count * 10 + static_cast<size_t>(c - '0');
  }
  return count;
}

Milliseconds ParseDuration(std::string_view text) {
  struct Unit {
    std::string_view name;
    int64_t milliseconds;
  };
  constexpr std::array kUnits{Unit{"ms", 1}, Unit{"s", 1000}, Unit{"m", 60'000},
                              Unit{"h", 3'600'000}};
  constexpr int64_t kLongest = int64_t{366} * 24 * 3'600'000;
  const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
  const std::optional<size_t> count = ParseCount(text.substr(0, digits));
  for (const Unit& unit : kUnits) {
    if (!count || text.substr(digits) != unit.name) continue;
    const int64_t length = static_cast<int64_t>(*count) * unit.milliseconds;
    if (length <= kLongest) return Milliseconds(length);
  }
  throw CommandError{"no duration: " + Quoted(text) + " (500ms, 10s, 2m, 2h)"};
}

DateTime ParseMoment(std::string_view text) {
  using namespace std::chrono;
  // Behind the point a second may have as many places as a clock of milliseconds has.
  constexpr std::string_view kForm = "dddd-dd-ddTdd:dd:dd.ddd";
  constexpr size_t kWhole = 19;
  const std::string_view form = kForm.substr(0, text.size());
  const bool fits =
      (text.size() == kWhole || text.size() > kWhole + 1) &&
      std::equal(text.begin(), text.end(), form.begin(), form.end(), [](char c, char place) {
        return place == 'd' ? c >= '0' && c <= '9' : c == place;
      });
  const auto number = [&](size_t begin, size_t length) {
    return static_cast<int>(ParseCount(text.substr(begin, length)).value_or(0));
  };
  if (fits) {
    const year_month_day date = year(number(0, 4)) / number(5, 2) / number(8, 2);
    const int hour = number(11, 2);
    const int minute = number(14, 2);
    const int second = number(17, 2);
    if (date.ok() && hour < 24 && minute < 60 && second < 60) {
      std::string fraction(text.substr(std::min(text.size(), kWhole + 1)));
      fraction.resize(3, '0');
      return local_days(date) + hours(hour) + minutes(minute) + seconds(second) +
             milliseconds(ValLong(fraction));
    }
  }
  throw CommandError{"no date and time: " + Quoted(text) + " (YYYY-MM-DDTHH:MM:SS[.FFF])"};
}

bool ParseFlag(std::string_view text) {
  if (text == "1" || EqualText(text, "true")) return true;
  if (text == "0" || EqualText(text, "false")) return false;
  throw CommandError{"no flag: " + Quoted(text) + " (0, 1, true, false)"};
}

}  // namespace quarnel
