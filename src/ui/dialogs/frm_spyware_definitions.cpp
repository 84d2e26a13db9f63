#include "ui/dialogs/frm_spyware_definitions.h"

#include "ui/main/maker_pages.h"

namespace quarnel {

frmSpywareDefinitions::frmSpywareDefinitions(Services services, const WizardState& wizard)
    : Form(services.host, "frmSpywareDefinitions"), s_(services), wizard_(wizard) {
  SetBorder(BorderStyle::kNone);
  imgMove.SetDragsWindow(true);
  imgClose.Click = [this] { Close(UnloadMode::kCode); };
  WebBrowser1.LinkClick = [this](std::string_view address) { OpenAddress(s_, address); };
}

void frmSpywareDefinitions::Form_Load() {
  SetCaption(s_.settings.ApplicationName());
  WebBrowser1.Navigate(wizard_.helpPage);
}

}  // namespace quarnel
