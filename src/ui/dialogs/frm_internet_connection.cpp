#include "ui/dialogs/frm_internet_connection.h"

namespace quarnel {

frmInternetConnection::frmInternetConnection(const Services& services, Update& update,
                                             Form& mainWindow)
    : Form(services.host, "frmInternetConnection"), s_(services) {
  cmdOK.Click = [this] { Close(UnloadMode::kCode); };
  tmrRefresh.Tick = [&update, &mainWindow] {
    if (update.TakeConnectionLost()) mainWindow.Activate();
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
