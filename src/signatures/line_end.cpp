#include "signatures/line_end.h"

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quarnel {

size_t FindLineEnd(std::string_view text, size_t from) {
  size_t position = from;
#if defined(__SSE2__)
  const __m128i carriageReturn = _mm_set1_epi8('\r');
  const __m128i lineFeed = _mm_set1_epi8('\n');
  for (; position + 16 <= text.size(); position += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + position));
    const __m128i ends =
        _mm_or_si128(_mm_cmpeq_epi8(bytes, carriageReturn), _mm_cmpeq_epi8(bytes, lineFeed));
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(ends));
    if (mask != 0) return position + static_cast<size_t>(std::countr_zero(mask));
  }
#endif
  while (position < text.size() && text[position] != '\r' && text[position] != '\n') ++position;
  return position;
}

}  // namespace quarnel
