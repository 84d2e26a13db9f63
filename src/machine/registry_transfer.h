#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "machine/reg_file.h"
#include "platform/registry.h"

// Registry files into a registry and out of it.
namespace quarnel {

// Runs the steps in order, those at `below` and under it when that is given. A deletion of what is
// not there is done already. Ends at the first step that fails, with its line and reason.
std::optional<RegError> ApplySteps(Registry& registry, std::span<const RegStep> steps,
                                   const std::optional<KeyPath>& below);

// Adds the steps that make a key with all its values and everything below it. Subkeys that may not
// be read are left out; the status is that of the key itself.
RegistryStatus CollectSteps(Registry& registry, const KeyPath& key, std::vector<RegStep>& steps);

// "access denied", for people.
std::string StatusText(RegistryStatus status);

}  // namespace quarnel
