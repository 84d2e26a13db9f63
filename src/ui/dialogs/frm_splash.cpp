#include "ui/dialogs/frm_splash.h"

#include "base/text.h"
#include "core/open_in_browser.h"
#include "core/product.h"
#include "platform/shell.h"

namespace quarnel {

frmSplash::frmSplash(Services services) : Form(services.host, "frmSplash"), s_(services) {
  for (size_t i = 0; i < shpProgress.size(); ++i) {
    shpProgress[i] = std::make_unique<Panel>(*this, "shpProgress(" + std::to_string(i) + ")");
    shpProgress[i]->SetVisible(i == 0);
  }
  lblCount.SetVisible(false);
  tmrUnload.Tick = [this] { tmrUnload_Timer(); };
  lblWebSite.Click = [this] { lblWebSite_Click(); };
}

void frmSplash::Form_Load() {
  host().SetMousePointer(Pointer::kHourglass);
  lblWebSite.SetCaption(kCompanyName);
  tmrUnload.SetEnabled(true);
}

void frmSplash::tmrUnload_Timer() {
  shpProgress[shown_]->SetVisible(false);
  shown_ = (shown_ + 1) % shpProgress.size();
  shpProgress[shown_]->SetVisible(true);
  lblCount.SetCaption(std::to_string(ValLong(lblCount.Caption()) - 1));
  if (Trim(lblCount.Caption()) != "0") return;
  tmrUnload.SetEnabled(false);
  host().SetMousePointer(Pointer::kDefault);
  Close(UnloadMode::kCode);
}

void frmSplash::lblWebSite_Click() {
  Reporting(s_.log, "lblWebSite_Click of frmSplash", [&] {
    OpenInBrowser(s_.platform.shell(), s_.platform.machine(), s_.platform.files(), host(),
                  lblWebSite.Caption(), "htm", s_.settings.ApplicationName());
  });
}

}  // namespace quarnel
