#pragma once

#include <string>
#include <string_view>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"
#include "protection/kill_bits.h"

namespace quarnel {

// A run over all controls that the ActiveX shield knows, with a button that cancels it and
// afterwards closes the window.
class ShieldDialog : public Form {
 public:
  Label lblStatus{*this, "lblStatus"};
  Button cmdcancel{*this, "cmdcancel", "CANCEL"};

 protected:
  ShieldDialog(const Services& services, std::string name);

  using Work = void (*)(const Services&, ShieldRun&);
  // Works, and unless that was cancelled says `done` and stores whether the shield is applied.
  void Run(Work work, std::string_view done, bool applied);
  // Ends the work in its middle; the shield counts as not applied.
  void CancelWork();
  // The button while the work goes on.
  virtual void Cancel() = 0;
  // A user who closes the window in the middle of the work has cancelled it.
  void Form_QueryUnload(bool& cancel, UnloadMode mode) override;
  const Services& services() const { return s_; }

 private:
  Services s_;
  ShieldRun run_{lblStatus};
  bool working_ = false;
};

}  // namespace quarnel
