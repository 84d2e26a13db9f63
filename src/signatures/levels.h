#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/machine.h"

namespace quarnel {

// The level of a threat, from QNLSigLevel.dll; 3 when the file states none above 0. Raises
// kOverflow for a level beyond 16 bits.
int16_t GetThreatLevel(Files& files, Machine& machine, std::string_view sThreatName);

// The word for a level, which is empty for every one: the results show the number and one blank.
std::string_view GetThreatLevelText(int16_t level);

}  // namespace quarnel
