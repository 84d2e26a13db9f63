#pragma once

#include "controls/host.h"
#include "core/error_log.h"
#include "core/settings.h"
#include "platform/platform.h"

namespace quarnel {

// What every form may use. Forms hand on to a subsystem only the parts that it needs.
struct Services {
  Platform& platform;
  Host& host;
  Settings& settings;
  ErrorLog& log;
};

}  // namespace quarnel
