#include "ui/dialogs/frm_close_ie.h"

namespace quarnel {

frmCloseIE::frmCloseIE(const Services& services, OptionsPage& options)
    : Form(services.host, "frmCloseIE"), s_(services), options_(options) {
  cmdCloseIE.Click = [this] { cmdCloseIE_Click(); };
  cmdcancel.Click = [this] { cmdCancel_Click(); };
}

void frmCloseIE::Form_Load() { SetCaption(s_.settings.ApplicationName() + " Warning"); }

void frmCloseIE::cmdCloseIE_Click() {
  Reporting(s_.log, "cmdCloseIE_Click of frmCloseIE", [&] {
    // The click saves all three keys.
    if (chkSkipInFuture.Checked()) options_.optCloseAllIEAndDonotShowIfFuture.ClickByUser();
    CloseBrowserWindows(s_.platform.desktop());
    Close(UnloadMode::kCode);
  });
}

void frmCloseIE::cmdCancel_Click() {
  Reporting(s_.log, "cmdCancel_Click of frmCloseIE", [&] {
    if (chkSkipInFuture.Checked()) options_.optSkipClosingAndDonotShow.ClickByUser();
    Close(UnloadMode::kCode);
  });
}

}  // namespace quarnel
