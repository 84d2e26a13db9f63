#pragma once

#include "controls/simple_controls.h"
#include "core/settings.h"

namespace quarnel {

// The controls of the Live Update page. A download runs while cmdDownload is hidden and the cancel
// button shows.
struct UpdatePage {
  explicit UpdatePage(Form& form);

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
};

// Whether a download runs: the user can then only cancel it.
bool DownloadRuns(const UpdatePage& page);

// Shows when the archives were fetched.
void SetFileTransferProtocolValues(UpdatePage& page, const Settings& settings);

}  // namespace quarnel
