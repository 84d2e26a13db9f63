#pragma once

#include "controls/list_view.h"
#include "controls/simple_controls.h"

namespace quarnel {

// What decides which controls of the scan page show and can be used; Show follows it.
struct ScanFacts {
  bool running = false;   // from the click on Start to Stop or the end
  bool stoppable = true;  // there is something left to stop
  bool pausable = true;
  bool watched = true;   // the scan is looked at, and not its results
  bool counted = true;   // what it counted stands where the summary would
  bool measured = true;  // there is a bar, ...
  bool percent = true;   // ... what it says in words, ...
  bool named = true;     // ... the name of what is being scanned, ...
  bool told = true;      // ... and the status
};

// The controls of a running scan: its buttons, its bar and captions, and what it has counted so
// far.
struct ScanPage {
  Form& form;

  Image ImgStartScanMouseMove{form, "ImgStartScanMouseMove"};
  Image ImgStopScanMouseMove{form, "ImgStopScanMouseMove"};
  Image imgPause{form, "imgPause"};

  ProgressBar pbgMain{form, "pbgMain"};
  Label lblStatus{form, "lblStatus"};
  Label lblPercentageCompleted{form, "lblPercentageCompleted"};
  Label lblScanning{form, "lblScanning"};

  Label lblMemoryInspected{form, "lblMemoryInspected", "0"};
  Label lblMemoryInfected{form, "lblMemoryInfected", "0"};
  Label lblRegistryInspected{form, "lblRegistryInspected", "0"};
  Label lblFilesFolderInspected{form, "lblFilesFolderInspected", "0"};
  Label lblTrackingObjectScanned{form, "lblTrackingObjectScanned", "0"};
  Label lblMD5Scanned{form, "lblMD5Scanned", "0"};
  Label lblMD5Infected{form, "lblMD5Infected", "0"};

  Label lblTotalNoOfSignature{form, "lblTotalNoOfSignature", "0"};
  Label lblTotalSpywares{form, "lblTotalSpywares", "0"};
  Label lblTotalSignatureInTabSignature{form, "lblTotalSignatureInTabSignature"};

  Panel picScanningProcessRightWindow{form, "picScanningProcessRightWindow"};
  Panel picResultSummary{form, "picResultSummary"};

  ListView lvwHardDrives{form, "lvwHardDrives", {"Drive"}};
  ListView lvwBlockedCookies{form, "lvwBlockedCookies", {"SpyName"}};

  ScanFacts facts;
};

// Lets the page's controls show what its facts say.
void Show(ScanPage& page);

// The flags that a scan shares with the handlers that run inside it.
struct ScanFlags {
  bool scanStopRequested = false;     // the running scan must end at its next test
  bool scheduledScanRunning = false;  // asks for the closing message of a scheduled scan
  long lastProcessCount = 0;          // what the memory inspection counted last
  bool alertScanRequested = false;    // the alert asked for a scan: the inspection ends
  bool alertAnswered = true;          // the alert has closed, and the inspection may go on
};

// "ScanStopRequested" and the rest are tested between pieces of work; this is the form's tag that
// makes the next forced stop ask nothing.
inline constexpr std::string_view kDoNotShow = "DO NOT SHOW";

// Whether a scan runs: the Start image is hidden for exactly that time.
inline bool ScanRuns(const ScanPage& page) { return !page.ImgStartScanMouseMove.Visible(); }

}  // namespace quarnel
