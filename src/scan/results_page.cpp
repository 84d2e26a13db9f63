#include "scan/results_page.h"

namespace quarnel {

void Show(ResultsPage& page) {
  const ResultsFacts& facts = page.facts;
  page.cmdDone.SetVisible(facts.dealtWith);
  page.cmdIgnoredProcesses.SetVisible(facts.dealtWith);
  page.cmdcancel.SetVisible(facts.cancellable);
  page.cmdRemoveSpywares.SetVisible(facts.removable);
  page.cmdCheckUncheckAll.SetVisible(facts.removable);
  page.chkCreateRestore.SetVisible(facts.restorable);
  page.ImgAddToIgnoredListNormal.SetVisible(facts.exemptable);
  page.imgNext0.SetVisible(facts.forward);
  page.imgNext1.SetVisible(facts.back);
  page.picSearchResultsLeftWindow.SetVisible(facts.leftPane);
  page.picResultsRightWindow.SetVisible(facts.rightPane);
  page.sfttvwResults.SetVisible(facts.flatTree);
}

}  // namespace quarnel
