#include "ui/alerts/frm_bhr.h"

#include "core/messages.h"

namespace quarnel {
namespace {

constexpr ScreenArea kAlertSize{.width = 7200, .height = 4800};

}  // namespace

frmBHR::frmBHR(const Services& services, BrowserSettings& browserSettings,
               Timer& tmrPreventChangeHomePage)
    : Form(services.host, "frmBHR"),
      s_(services),
      browserSettings_(browserSettings),
      tmrPreventChangeHomePage_(tmrPreventChangeHomePage),
      slide_(*this, tmrPopupSignatureUpdate, kAlertStep) {
  SetBorder(BorderStyle::kNone);
  SetShowInTaskbar(false);
  SetPlace(kAlertSize);
  lblApproval.SetBold(true);
  cmdAllow.Click = [this] {
    Reporting(s_.log, "cmdAllow_Click of frmSignatureUpdated", [&] { cmdAllow_Click(); });
  };
  cmdBlock.Click = [this] { Reporting(s_.log, "cmdBlock_Click", [&] { cmdBlock_Click(); }); };
  tmrPopupSignatureUpdate.Tick = [this] {
    Reporting(s_.log, "tmrPopupSignatureUpdate_Timer  of frmSignatureUpdated",
              [&] { slide_.Tick(); });
  };
}

void frmBHR::Form_Load() {
  Reporting(s_.log, "Form_Load of frmBHR", [&] {
    const PendingBrowserChange& change = browserSettings_.Pending();
    lblApproval.SetCaption("Internet Explorer " + change.label + " URL Changes Requires Approval");
    lblChangingTo.SetCaption("The Internet Explorer URL for your " + change.label +
                             " is attempting to be changed from " + change.storedValue + " to " +
                             change.newValue);
    lblDefault.SetCaption("The default URL for your " + change.label + " is " +
                          change.defaultValue + ".");
    tmrPreventChangeHomePage_.SetEnabled(false);
    SetCaption(s_.settings.ApplicationName() + " Alert");
    slide_.Start();
  });
}

void frmBHR::Form_Unload() {
  tmrPopupSignatureUpdate.SetEnabled(false);
  tmrPreventChangeHomePage_.SetEnabled(true);
}

bool frmBHR::Remembers() {
  chkRememberURL.SetValue(1);
  return chkRememberURL.Checked();
}

void frmBHR::cmdAllow_Click() {
  browserSettings_.MoveBaseline();
  if (Remembers()) {
    browserSettings_.Remember(browserSettings_.Pending().newValue, url_verdict::kAllow);
  }
  browserSettings_.LoadBrowserSettings();
  browserSettings_.LoadAllowedBlockedURLs();
  Close(UnloadMode::kCode);
}

// Another change may become the pending one while the question is open; this is about what it says.
void frmBHR::cmdBlock_Click() {
  const PendingBrowserChange change = browserSettings_.Pending();
  if (!Messages(s_.host, s_.settings)
           .Ask("Are you sure you would like to prevent the Internet Explorer URL " + change.label +
                    " from being changed to " + change.newValue + " from current setting of " +
                    change.storedValue + "?\r\nBlock Internet Explorer URL change?",
                MessageIcon::kInformation)) {
    return;
  }
  browserSettings_.Undo(change);
  if (Remembers()) browserSettings_.Remember(change.newValue, url_verdict::kBlock);
  browserSettings_.LoadAllowedBlockedURLs();
  Close(UnloadMode::kCode);
}

}  // namespace quarnel
