#include "core/like.h"

#include <bitset>
#include <cstddef>
#include <vector>

#include "base/runtime_error.h"

namespace quarnel {
namespace {

// What one place of a pattern fits: a single character of a set, or any run of characters.
struct Place {
  std::bitset<256> set;
  bool isRun = false;
};

size_t Index(char c) { return static_cast<unsigned char>(c); }

// The set of a list that stands between its brackets, without its leading "!".
std::bitset<256> ListSet(std::string_view list) {
  std::bitset<256> set;
  for (size_t i = 0; i < list.size(); ++i) {
    const size_t first = Index(list[i]);
    size_t last = first;
    if (i + 2 < list.size() && list[i + 1] == '-') {
      last = Index(list[i + 2]);
      i += 2;
    }
    if (last < first) throw RuntimeError(ErrorNumber::kInvalidPattern);
    for (size_t c = first; c <= last; ++c) set.set(c);
  }
  return set;
}

std::vector<Place> Compile(std::string_view pattern) {
  std::vector<Place> places;
  for (size_t i = 0; i < pattern.size(); ++i) {
    Place place;
    switch (pattern[i]) {
      case '*':
        if (!places.empty() && places.back().isRun) continue;
        place.isRun = true;
        break;
      case '?':
        place.set.set();
        break;
      case '#':
        place.set = ListSet("0-9");
        break;
      case '[': {
        const size_t end = pattern.find(']', i);
        if (end == std::string_view::npos) throw RuntimeError(ErrorNumber::kInvalidPattern);
        std::string_view list = pattern.substr(i + 1, end - i - 1);
        i = end;
        if (list.empty()) continue;
        const bool negated = list.size() > 1 && list.front() == '!';
        if (negated) list.remove_prefix(1);
        place.set = ListSet(list);
        if (negated) place.set.flip();
        break;
      }
      default:
        place.set.set(Index(pattern[i]));
        break;
    }
    places.push_back(place);
  }
  return places;
}

}  // namespace

bool Like(std::string_view text, std::string_view pattern) {
  const std::vector<Place> places = Compile(pattern);
  size_t at = 0;
  size_t place = 0;
  // The last run that was entered and the end of what it has taken so far. Only this run ever has
  // to take more: whatever fitted before it can stay as it is.
  size_t run = places.size();
  size_t runEnd = 0;
  while (at < text.size()) {
    if (place < places.size() && places[place].isRun) {
      run = place++;
      runEnd = at;
    } else if (place < places.size() && places[place].set.test(Index(text[at]))) {
      ++place;
      ++at;
    } else if (run < places.size()) {
      place = run + 1;
      at = ++runEnd;
    } else {
      return false;
    }
  }
  if (place < places.size() && places[place].isRun) ++place;
  return place == places.size();
}

}  // namespace quarnel
