#pragma once

#include <memory>

#include "base/event_wait.h"

namespace quarnel {

// Of the calling thread.
std::unique_ptr<EventWait> MakeEventWait();

}  // namespace quarnel
