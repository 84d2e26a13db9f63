#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "recovery/manifest.h"

namespace quarnel {

// Adds what a registry trace stands for to the manifest, exact to the byte: the value, or for an
// empty value name the key with all its values and all below it. Names take the letter case in
// which the registry has them. A trace that is gone adds nothing. The result names the keys and
// values that are there and could not be read.
std::vector<std::string> SnapshotTrace(Registry& registry, const ValueItem& trace,
                                       Manifest& manifest);

}  // namespace quarnel
