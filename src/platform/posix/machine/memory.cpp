#include "platform/memory.h"

#include <sys/mman.h>

#include <memory>

namespace quarnel {

void PreferLargePages([[maybe_unused]] void* begin, [[maybe_unused]] size_t size) {
#ifdef MADV_HUGEPAGE
  // Whole large pages only: the rest may belong to something small.
  constexpr size_t kPage = size_t{2} << 20;
  if (std::align(kPage, kPage, begin, size) == nullptr) return;
  madvise(begin, size / kPage * kPage, MADV_HUGEPAGE);
#endif
}

}  // namespace quarnel
