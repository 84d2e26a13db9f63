#pragma once

#include <array>

#include "controls/simple_controls.h"

namespace quarnel {

// The progress of a removal, and the page that closes it.
struct RemovalPage {
  Form& form;
  ProgressBar pbrRemoveSpyware{form, "pbrRemoveSpyware", ProgressBar::Range::kLoose};
  Label lblDeletingCaption{form, "lblDeletingCaption"};
  Button cmdRemoveSpyware2{form, "cmdRemoveSpyware2", "&Remove"};

  Panel picRemoveSummary{form, "picRemoveSummary"};
  Label lblScanSummary{form, "lblScanSummary"};
  Label lblScanSummaryMessage{form, "lblScanSummaryMessage"};
  Label lblRemoveSummaryMessage{form, "lblRemoveSummaryMessage"};
  // How many threats of each level, from 1 to 5, are left.
  std::array<Label, 5> lblThreatLevelCount = {{{form, "lblThreatLevelCount(0)"},
                                               {form, "lblThreatLevelCount(1)"},
                                               {form, "lblThreatLevelCount(2)"},
                                               {form, "lblThreatLevelCount(3)"},
                                               {form, "lblThreatLevelCount(4)"}}};
  Button cmdFinish{form, "cmdFinish", "F&inish"};
};

}  // namespace quarnel
