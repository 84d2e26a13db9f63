#pragma once

#include <array>

#include "controls/list_view.h"
#include "controls/simple_controls.h"

namespace quarnel {

// What decides which controls of the removal show; Show follows it.
struct RemovalFacts {
  bool measured = false;    // there is a bar, ...
  bool told = true;         // ... and the name of what is being done
  bool ended = false;       // the page that closes it is up
  bool incomplete = false;  // the restore point does not hold everything
};

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
  // What cannot be brought back, where the restore point does not hold everything.
  Label lblRestorePointState{form, "lblRestorePointState"};
  // What became of each trace; what is not gone stands first.
  ListView lvwRemovalReport{form, "lvwRemovalReport", {"Trace", "Outcome", "Reason"}};
  Button cmdCopyRemoval{form, "cmdCopyRemoval", "&Copy Report"};
  Label lblThreatLevelNote{form, "lblThreatLevelNote",
                           "Threats that are still in the results, by their level from 1 to 5:"};
  // How many threats of each level, from 1 to 5, are left.
  std::array<Label, 5> lblThreatLevelCount = {{{form, "lblThreatLevelCount(0)"},
                                               {form, "lblThreatLevelCount(1)"},
                                               {form, "lblThreatLevelCount(2)"},
                                               {form, "lblThreatLevelCount(3)"},
                                               {form, "lblThreatLevelCount(4)"}}};
  Button cmdFinish{form, "cmdFinish", "F&inish"};

  RemovalFacts facts;
};

// Lets the page's controls show what its facts say.
void Show(RemovalPage& page);

}  // namespace quarnel
