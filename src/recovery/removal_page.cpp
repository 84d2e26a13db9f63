#include "recovery/removal_page.h"

namespace quarnel {

void Show(RemovalPage& page) {
  page.pbrRemoveSpyware.SetVisible(page.facts.measured);
  page.lblDeletingCaption.SetVisible(page.facts.told);
  page.picRemoveSummary.SetVisible(page.facts.ended);
  page.lblRestorePointState.SetVisible(page.facts.incomplete);
}

}  // namespace quarnel
