#include "platform/names.h"

#include "base/text.h"

namespace quarnel {

bool EqualNames(std::string_view left, std::string_view right) {
  if (EqualText(left, right)) return true;
  return !IsAscii(left) && !IsAscii(right) && FoldName(left) == FoldName(right);
}

}  // namespace quarnel
