#include "ui/alerts/frm_spyware_found_alert.h"

#include <utility>

#include "base/text.h"

namespace quarnel {

frmSpywareFoundAlert::frmSpywareFoundAlert(const Services& services, MemoryShield& shield,
                                           OptionsPage& options, Timer& tmrMemoryInspected)
    : Form(services.host, "frmSpywareFoundAlert"),
      s_(services),
      shield_(shield),
      options_(options),
      tmrMemoryInspected_(tmrMemoryInspected) {
  SetBorder(BorderStyle::kNone);
  SetShowInTaskbar(false);
  SetPlace({.width = 6600, .height = 4200});
  const auto wire = [this](Handler& event, std::string_view procedure, Handler work) {
    event = [this, label = std::string(procedure) + " of frmSpywareFoundAlert",
             work = std::move(work)] { Reporting(s_.log, label, work); };
  };
  wire(ImgYesMouseMove.Click, "cmdYes_Click", [this] { cmdYes_Click(); });
  wire(ImgNoMouseMove.Click, "cmdNo_Click", [this] { cmdNo_Click(); });
  wire(chkMemorySheild.Click, "chkMemorySheild_Click", [this] { chkMemorySheild_Click(); });
  wire(tmrPopupWindow.Tick, "tmrPopupWindow_Timer", [this] { slide_.Tick(); });
  wire(tmrBlink.Tick, "tmrBlink_Timer", [this] {
    const bool red = lblSpywareName.ForeColour() == Colour::kRed;
    lblSpywareName.SetForeColour(red ? Colour::kBlack : Colour::kRed);
  });
  wire(tmrUnload.Tick, "tmrUnload_Timer", [this] { Leave(); });
}

void frmSpywareFoundAlert::Form_Load() {
  Reporting(s_.log, "Form_Load of frmSpywareFoundAlert", [&] {
    SetCaption("ALERT!!! - " + s_.settings.ApplicationName());
    shield_.AlertOpened();
    slide_.Start();
  });
}

void frmSpywareFoundAlert::Tell(const MemoryAlert& alert) {
  alert_ = alert;
  lblSpywareName.SetCaption(alert.Question());
  lblCompanyName.SetCaption(alert.company);
  lblHashCode.SetCaption(alert.hash);
  tmrBlink.SetEnabled(true);
  Show();
}

std::string frmSpywareFoundAlert::ProcessName(std::string_view caption) {
  constexpr size_t kBehindFound = 5;
  const auto placeOf = [caption](std::string_view word) {
    const size_t found = caption.find(word);
    return found == std::string_view::npos ? size_t{0} : found + 1;  // counted from 1
  };
  const size_t start = placeOf("found") + kBehindFound;
  const size_t end = placeOf("running");
  if (end < start) throw RuntimeError(ErrorNumber::kInvalidCall, caption);
  return std::string(caption.substr(start - 1, end - start));
}

// The program is not ended here: the scan finds it again, and the removal ends it.
void frmSpywareFoundAlert::cmdYes_Click() {
  tmrBlink.SetEnabled(false);
  ImgYesMouseMove.SetEnabled(false);
  shield_.AlertClosed();
  lblSpywareName.SetTag(Replace(ProcessName(lblSpywareName.Caption()), " ", ""));
  shield_.RequestScan();
  Leave();
}

void frmSpywareFoundAlert::cmdNo_Click() {
  tmrBlink.SetEnabled(false);
  ImgNoMouseMove.SetEnabled(false);
  shield_.AlertClosed();
  lblSpywareName.SetTag(ProcessName(lblSpywareName.Caption()));
  shield_.Decline(alert_);
  Leave();
}

// The box says the reverse of what the timer is set to. At the end of the inspection the setting
// decides.
void frmSpywareFoundAlert::chkMemorySheild_Click() {
  const bool disables = chkMemorySheild.Checked();
  s_.settings.Save(setting::kMemorySheildOn, chkMemorySheild.Value());
  options_.chkMemorySheild.SetValue(disables ? 0 : 1);
  tmrMemoryInspected_.SetEnabled(disables);
}

}  // namespace quarnel
