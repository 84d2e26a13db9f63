#include "core/mvb6_functions.h"

#include <algorithm>

namespace quarnel {

long InStrRev(std::string_view text, std::string_view find, long start, CompareMode compare) {
  if (start >= 0) text = text.substr(0, static_cast<size_t>(start));
  if (find.size() > text.size()) return 0;
  if (compare == CompareMode::kBinary) return static_cast<long>(text.rfind(find) + 1);
  for (size_t at = text.size() - find.size() + 1; at-- > 0;) {
    if (EqualText(text.substr(at, find.size()), find)) return static_cast<long>(at + 1);
  }
  return 0;
}

std::string StrReverse(std::string_view text) { return {text.rbegin(), text.rend()}; }

std::vector<std::string> Split(std::string_view text, std::string_view delimiter, long limit,
                               CompareMode compare) {
  std::vector<std::string> parts;
  if (text.empty() || limit == 0) return parts;
  const auto full = [&] { return limit > 0 && parts.size() + 1 >= static_cast<size_t>(limit); };
  while (!delimiter.empty() && !full()) {
    const size_t hit =
        compare == CompareMode::kBinary ? text.find(delimiter) : FindText(text, delimiter);
    if (hit == std::string_view::npos) break;
    parts.emplace_back(text.substr(0, hit));
    text.remove_prefix(hit + delimiter.size());
  }
  parts.emplace_back(text);
  return parts;
}

}  // namespace quarnel
