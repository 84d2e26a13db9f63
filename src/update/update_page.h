#pragma once

#include "controls/simple_controls.h"

namespace quarnel {

// What decides which controls of the update page show and can be used; Show follows it.
struct UpdateFacts {
  bool cancellable = true;  // the button that cancels
  bool told = false;        // the status
  bool measured = false;    // the bar
};

// The controls of the Live Update page. A download runs while cmdDownload is hidden and the cancel
// button shows.
struct UpdatePage {
  Form& form;
  Panel picLiveUpdateBase{form, "picLiveUpdateBase"};
  Button cmdDownload{form, "cmdDownload", "&Update"};
  Button cmdFTPDownloadCancel{form, "cmdFTPDownloadCancel", "&Cancel"};
  Label lblFTPStatus{form, "lblFTPStatus"};
  ProgressBar pgbFTP{form, "pgbFTP"};
  Label lblTransferInfo{form, "lblTransferInfo"};
  // When each archive was fetched last.
  TextBox txtFTPExecutableZIPFile{form, "txtFTPExecutableZIPFile"};
  TextBox txtFTPSignatureZIPFile{form, "txtFTPSignatureZIPFile"};

  UpdateFacts facts;
};

// Lets the page's controls show what its facts say.
void Show(UpdatePage& page);

}  // namespace quarnel
