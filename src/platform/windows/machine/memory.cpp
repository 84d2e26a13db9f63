#include "platform/memory.h"

namespace quarnel {

// Large pages need a right here that ordinary users do not have.
void PreferLargePages(void* /*begin*/, size_t /*size*/) {}

}  // namespace quarnel
