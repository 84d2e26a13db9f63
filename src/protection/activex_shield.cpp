#include "protection/activex_shield.h"

#include "core/messages.h"
#include "signatures/signature_files.h"

namespace quarnel {

ActiveXShield::ActiveXShield(const Uses& uses) : u_(uses) {
  const auto wire = [this](Clickable& control, std::string_view label, Handler work) {
    control.Click = [this, label, work = std::move(work)] {
      Reporting(u_.services.log, label, work);
    };
  };
  wire(u_.page.chkSelfDownloadingActivex, "chkSelfDownloadingActivex_Click in frmMain",
       [this] { chkSelfDownloadingActivex_Click(); });
  wire(u_.page.cmdImmunize, "cmdImmunize_Click in frmMain", [this] { u_.window.Immunize(); });
  wire(u_.page.cmdDeImmunize, "cmdDeImmunize_Click in frmMain", [this] { u_.window.DeImmunize(); });
}

void ActiveXShield::chkSelfDownloadingActivex_Click() {
  if (u_.options.LoadingActiveX()) return;
  IgnoringErrors([&] { Switch(u_.page.chkSelfDownloadingActivex.Checked()); });
  u_.window.RefreshSummary();
}

// What was asked for is stored, whatever became of it in the dialog.
void ActiveXShield::Switch(bool on) {
  const Services& s = u_.services;
  if (SignaturePresent(s.platform.files(), s.platform.machine(), signature_file::kActiveX)) {
    if (on) {
      u_.window.Immunize();
    } else {
      u_.window.DeImmunize();
    }
    return s.settings.Save(setting::kSheild, on);
  }
  if (!Messages(s.host, s.settings)
           .Ask(std::string(signature_file::kActiveX) +
                    " is missing or it has been corrupted. Would you like to download this "
                    "signature?",
                MessageIcon::kInformation)) {
    return;
  }
  u_.tmrBlink.SetEnabled(true);
  u_.window.SelectPage(Tab::kLiveUpdate);
}

}  // namespace quarnel
