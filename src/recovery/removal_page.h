#pragma once

#include "controls/simple_controls.h"

namespace quarnel {

// The progress of a removal.
struct RemovalPage {
  Form& form;
  ProgressBar pbrRemoveSpyware{form, "pbrRemoveSpyware", ProgressBar::Range::kLoose};
  Label lblDeletingCaption{form, "lblDeletingCaption"};
};

}  // namespace quarnel
