#include "ui/alerts/frm_star_up_alert.h"

#include "base/text.h"

namespace quarnel {
namespace {

constexpr ScreenArea kAlertDesign{.width = 7200, .height = 4800};

constexpr std::string_view kApplication = "Application: ";
constexpr std::string_view kPath = "File Path: ";

}  // namespace

frmStarUpAlert::frmStarUpAlert(const Services& services, StartupShield& startups,
                               Timer& tmrPreventChangeHomePage)
    : Form(services.host, "frmStarUpAlert"),
      s_(services),
      startups_(startups),
      tmrPreventChangeHomePage_(tmrPreventChangeHomePage),
      slide_(*this, tmrPopupSignatureUpdate, kAlertStep) {
  SetBorder(BorderStyle::kNone);
  SetShowInTaskbar(false);
  SetPlace(kAlertDesign);
  cmdAllow.Click = [this] { Reporting(s_.log, "cmdAllow_Click", [&] { cmdAllow_Click(); }); };
  cmdBlock.Click = [this] { Reporting(s_.log, "cmdBlock_Click", [&] { cmdBlock_Click(); }); };
  tmrPopupSignatureUpdate.Tick = [this] {
    Reporting(s_.log, "tmrPopupSignatureUpdate_Timer  of frmSignatureUpdated",
              [&] { slide_.Tick(); });
  };
}

void frmStarUpAlert::Form_Load() {
  Reporting(s_.log, "Form_Load of frmBHR", [&] {
    const StartupEntry& entry = startups_.Pending();
    const std::string& product = s_.settings.ApplicationName();
    lblApproval.SetCaption(product +
                           " has detected a program trying to add itself to the startup "
                           "programs/Registry. Startup programs are loaded automatically when "
                           "Windows boots up.");
    lblSection.SetCaption("[" + entry.section + "]");
    lblApplication.SetCaption(std::string(kApplication) + entry.name);
    lblPath.SetCaption(std::string(kPath) + entry.path);
    SetCaption(product + " Startup Program Alert");
    tmrPreventChangeHomePage_.SetEnabled(false);
    slide_.Start();
  });
}

void frmStarUpAlert::Form_Unload() {
  tmrPopupSignatureUpdate.SetEnabled(false);
  tmrPreventChangeHomePage_.SetEnabled(true);
}

void frmStarUpAlert::Remember(std::string_view mark) {
  chkRememberURL.SetValue(1);
  if (!chkRememberURL.Checked()) return;
  const std::string& section = lblSection.Caption();
  startups_.Remember({.name = Replace(lblApplication.Caption(), kApplication, ""),
                      .path = Replace(lblPath.Caption(), kPath, ""),
                      .section = section.substr(1, section.size() - 2)},
                     mark);
}

void frmStarUpAlert::cmdAllow_Click() {
  Remember(verdict::kAllowed);
  startups_.Reload();
  Close(UnloadMode::kCode);
}

void frmStarUpAlert::cmdBlock_Click() {
  const StartupEntry entry = startups_.Pending();
  const Answer answer = s_.host.MsgBox(
      {.text = "Are you sure you would like to block " + entry.name + "  Startup program?",
       .title = "Startup Manager",
       .icon = MessageIcon::kQuestion,
       .buttons = MessageButtons::kYesNo});
  if (answer != Answer::kYes) return;
  Remember(verdict::kBlocked);
  startups_.Block(entry);
  startups_.Reload();
  Close(UnloadMode::kCode);
}

}  // namespace quarnel
