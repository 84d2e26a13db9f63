#pragma once

#include "controls/list_view.h"
#include "controls/simple_controls.h"

namespace quarnel {

// Ties a box to the ticks of a list. Ticking the box ticks every row; unticking it unticks them
// only when all are ticked, so that a box which a single row's untick has cleared does not wipe
// the rest.
void TieSelectAll(CheckBox& box, ListView& list);

// Says below a list how many rows it has.
void ShowCount(Label& label, const ListView& list);

}  // namespace quarnel
