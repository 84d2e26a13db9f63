#include "platform/memory.h"

#include <sys/mman.h>

#include <cstdint>

namespace quarnel {

void PreferLargePages(const void* begin, size_t size) {
#ifdef MADV_HUGEPAGE
  // Whole large pages only: the rest may belong to something small.
  constexpr uintptr_t kPage = uintptr_t{2} << 20;
  const auto address = reinterpret_cast<uintptr_t>(begin);
  const uintptr_t first = (address + kPage - 1) / kPage * kPage;
  const uintptr_t last = (address + size) / kPage * kPage;
  if (first >= last) return;
  madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#else
  (void)begin;
  (void)size;
#endif
}

}  // namespace quarnel
