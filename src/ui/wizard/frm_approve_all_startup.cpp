#include "ui/wizard/frm_approve_all_startup.h"

namespace quarnel {

frmApproveAllStartup::frmApproveAllStartup(Services services)
    : Form(services.host, "frmApproveAllStartup"), s_(services) {
  startups.Choose(0);
  cmdOK.Click = [this] { Close(UnloadMode::kCode); };
}

void frmApproveAllStartup::Form_QueryUnload(bool& /*cancel*/, UnloadMode /*mode*/) {
  s_.settings.Save(setting::kStarupAllowBlock, optStartups0.Value());
}

}  // namespace quarnel
