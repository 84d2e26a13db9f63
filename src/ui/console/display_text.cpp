#include "ui/console/display_text.h"

#include "base/unicode.h"
#include "platform/terminal.h"

namespace quarnel {
namespace {

// Calls `visit` with each character's width and the number of its UTF-16 units; ends when it
// returns false.
template <typename Visit>
void ForEachWidth(std::u16string_view text, Visit visit) {
  for (size_t i = 0; i < text.size();) {
    const bool pair = text[i] >= 0xD800 && text[i] <= 0xDBFF && i + 1 < text.size();
    const char32_t code = pair ? 0x10000 + ((text[i] - 0xD800U) << 10) + (text[i + 1] - 0xDC00U)
                               : static_cast<char32_t>(text[i]);
    const size_t units = pair ? 2 : 1;
    if (!visit(ColumnsOf(code), units)) return;
    i += units;
  }
}

}  // namespace

std::string Quoted(std::string_view text) {
  constexpr size_t kLongest = 100;
  // Cut first: a hostile line may be long. Four bytes are the most that one column can need here.
  const bool cut = text.size() > 4 * kLongest;
  const std::string printable = Printable(text.substr(0, 4 * kLongest));
  std::string fitting = FitToWidth(printable, kLongest);
  if (cut || fitting.size() < printable.size()) fitting += "...";
  return "\"" + fitting + "\"";
}

size_t DisplayWidth(std::string_view text) {
  size_t width = 0;
  ForEachWidth(WellFormedUtf16(text), [&](size_t columns, size_t) {
    width += columns;
    return true;
  });
  return width;
}

std::string FitToWidth(std::string_view text, size_t columns) {
  const std::u16string whole = WellFormedUtf16(text);
  size_t width = 0;
  size_t length = 0;
  ForEachWidth(whole, [&](size_t next, size_t units) {
    if (width + next > columns) return false;
    width += next;
    length += units;
    return true;
  });
  return ToUtf8(std::u16string_view(whole).substr(0, length));
}

}  // namespace quarnel
