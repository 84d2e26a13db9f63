#include "scan/scan_page.h"

namespace quarnel {

void Show(ScanPage& page) {
  const ScanFacts& facts = page.facts;
  // The Start image is the program's word for "no scan runs".
  page.ImgStartScanMouseMove.SetVisible(!facts.running);
  page.ImgStartScanMouseMove.SetEnabled(!facts.running);
  page.ImgStopScanMouseMove.SetVisible(facts.running);
  page.ImgStopScanMouseMove.SetEnabled(facts.stoppable);
  page.imgPause.SetVisible(facts.running);
  page.imgPause.SetEnabled(facts.pausable);
  page.picScanningProcessRightWindow.SetVisible(facts.watched);
  page.picResultSummary.SetVisible(facts.counted);
  page.pbgMain.SetVisible(facts.measured);
  page.lblPercentageCompleted.SetVisible(facts.percent);
  page.lblScanning.SetVisible(facts.named);
  page.lblStatus.SetVisible(facts.told);
}

}  // namespace quarnel
