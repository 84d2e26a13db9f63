#pragma once

#include <memory>

#include "platform/platform.h"

namespace quarnel {

// A platform on the running system that takes back, when it is destroyed, what was changed in files
// and registry through it, so that each test finds the system as the one before found it. Rights of
// keys stay changed.
std::unique_ptr<Platform> MakeUndonePlatform(std::unique_ptr<Platform> platform);

}  // namespace quarnel
