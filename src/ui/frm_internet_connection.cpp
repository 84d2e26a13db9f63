#include "ui/frm_internet_connection.h"

#include "ui/frm_main.h"

namespace quarnel {

frmInternetConnection::frmInternetConnection(Services services, frmMain& main)
    : Form(services.host, "frmInternetConnection"), s_(services), main_(main) {
  cmdOK.Click = [this] { Close(UnloadMode::kCode); };
  tmrRefresh.Tick = [this] {
    if (!main_.connectionFlag) return;
    main_.Activate();
    main_.connectionFlag = false;
  };
}

void frmInternetConnection::Form_Load() {
  const std::string& name = s_.settings.ApplicationName();
  SetCaption(name);
  lblMessage.SetCaption(
      "Live Update could not retrieve the files of signatures and " + name +
      " application updates. Please verify that you are able to conect to the Internet and run "
      "Live Update again.\r\n\r\nNote: You must connect to the Internet before running Live "
      "Update.");
}

}  // namespace quarnel
