#pragma once

#include <array>
#include <memory>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"
#include "core/services.h"

namespace quarnel {

// The splash: six progress shapes, of which one shows, and the maker's address. It unloads itself
// after six ticks.
class frmSplash : public Form {
 public:
  explicit frmSplash(Services services);

  Label lblWebSite{*this, "lblWebSite"};
  Label lblCount{*this, "lblCount", "6"};
  std::array<std::unique_ptr<Panel>, 6> shpProgress;
  Timer tmrUnload{*this, "tmrUnload", Milliseconds(200), false};

 protected:
  void Form_Load() override;

 private:
  void tmrUnload_Timer();
  void lblWebSite_Click();

  Services s_;
  size_t shown_ = 0;
};

}  // namespace quarnel
