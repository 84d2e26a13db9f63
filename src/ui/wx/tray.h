#pragma once

#include <memory>

#include "controls/tray_icon.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/wx.h"

namespace quarnel {

// The icon of one TrayIcon control in the desktop's notification area.
class Tray {
 public:
  Tray(Form& form, TrayIcon& control, const Front& front);
  ~Tray();
  Tray(const Tray&) = delete;
  Tray& operator=(const Tray&) = delete;

  const Form* form() const { return form_; }
  const TrayIcon& control() const { return control_; }
  void Sync();

  // Whether the desktop shows such icons.
  static bool Available();

 private:
  Form* form_;
  TrayIcon& control_;
  const Front& front_;
  std::unique_ptr<wxTaskBarIcon> icon_;
  uint64_t revision_ = ~uint64_t{0};
};

}  // namespace quarnel
