#pragma once

#include <cstddef>

namespace quarnel {

// Tells the system that a large piece of memory, which was allocated and not touched yet, will be
// used all over: it may then come in large pages, which takes a fraction of the time. Changes
// nothing else, and does nothing where the system offers no such thing.
void PreferLargePages(void* begin, size_t size);

}  // namespace quarnel
