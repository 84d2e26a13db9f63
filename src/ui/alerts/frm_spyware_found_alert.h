#pragma once

#include <string>
#include <string_view>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"
#include "core/services.h"
#include "options/options_page.h"
#include "protection/memory_shield.h"
#include "ui/alerts/slide_in.h"

namespace quarnel {

// Tells of a listed program that runs. Yes asks for a scan, No declines it; without an answer it
// goes away after a while.
class frmSpywareFoundAlert : public Form {
 public:
  // `tmrMemoryInspected` and the options are those of the main window.
  frmSpywareFoundAlert(const Services& services, MemoryShield& shield, OptionsPage& options,
                       Timer& tmrMemoryInspected);

  Label lblSpywareName{*this, "lblSpywareName",
                       "Details of which process is ruuning and its a spyware"};
  Label lblCompanyName{*this, "lblCompanyName"};
  Label lblHashCode{*this, "lblHashCode"};
  Image ImgYesMouseMove{*this, "ImgYesMouseMove", "Start Scan Now"};
  Image ImgNoMouseMove{*this, "ImgNoMouseMove", "No"};
  CheckBox chkMemorySheild{*this, "chkMemorySheild", "Disable Memory Shield/Alert"};
  Timer tmrPopupWindow{*this, "tmrPopupWindow", Milliseconds(1), false};
  Timer tmrBlink{*this, "tmrBlink", Milliseconds(1000), false};
  Timer tmrUnload{*this, "tmrUnload", Milliseconds(20000), true};

  // Shows what the alert is about.
  void Tell(const MemoryAlert& alert);

  // What stands in front of "running" in the label, from the fifth character behind "found" on.
  // Where the caption has no "found" that takes the first four characters off the name. Raises
  // kInvalidCall when "running" does not come late enough.
  static std::string ProcessName(std::string_view caption);

 protected:
  void Form_Load() override;
  // Whatever ended it: the inspection that waits for it must go on.
  void Form_Unload() override { shield_.AlertClosed(); }

 private:
  void cmdYes_Click();
  void cmdNo_Click();
  void chkMemorySheild_Click();
  void Leave() { Close(UnloadMode::kCode); }

  Services s_;
  MemoryShield& shield_;
  OptionsPage& options_;
  Timer& tmrMemoryInspected_;
  SlideIn slide_{*this, tmrPopupWindow, kAlertStep};
  // What a scan that runs meanwhile finds changes nothing of it.
  MemoryAlert alert_;
};

}  // namespace quarnel
