#pragma once

#include <string_view>

#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "core/services.h"

// Kill bits: what keeps the browser from ever loading a control. They are written for each control
// of the signature file QNLImmData.dll, or taken away again, and lie in the registry from then on.
namespace quarnel {

// One run over the signature file, as its dialog shows it.
struct ShieldRun {
  Label& status;
  bool cancelled = false;  // may be set while events are processed
};

// What was written by the time of a cancel stays. A write or deletion that fails tells nobody.
void ImmunizeSpywares(const Services& services, ShieldRun& run);
void DeImmunizeSpywares(const Services& services, ShieldRun& run);

// The controls of a deciphered signature file: names with their class identifiers.
void LoadSpywaresInListview(const Services& services, ListView& list, std::string_view path);

}  // namespace quarnel
