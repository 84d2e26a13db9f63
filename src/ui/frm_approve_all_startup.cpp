#include "ui/frm_approve_all_startup.h"

#include "base/text.h"

namespace quarnel {

frmApproveAllStartup::frmApproveAllStartup(Services services)
    : Form(services.host, "frmApproveAllStartup"), s_(services) {
  startups.Choose(0);
  cmdOK.Click = [this] { Close(UnloadMode::kCode); };
}

void frmApproveAllStartup::Form_QueryUnload(bool& /*cancel*/, UnloadMode /*mode*/) {
  s_.settings.Save(setting::kStarupAllowBlock, BooleanText(optStartups0.Value()));
}

}  // namespace quarnel
