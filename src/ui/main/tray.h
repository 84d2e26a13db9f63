#pragma once

#include <string_view>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/tray_icon.h"

namespace quarnel {

// The program's one icon in the notification area.
class clsTray {
 public:
  explicit clsTray(TrayIcon& icon) : icon_(icon) {}

  bool bRunningInTray() const { return bRunningInTray_; }
  void SetRunningInTray(bool running) { bRunningInTray_ = running; }

  // Puts the icon there, with the form's caption as its tip.
  void ShowIcon(const Form& form);
  void RemoveIcon();
  // Both have no effect while the icon is not there. A tip is cut to 64 characters.
  void ChangeIcon(const Image& image);
  void ChangeToolTip(std::string_view text);

 private:
  TrayIcon& icon_;
  bool bRunningInTray_ = false;
};

}  // namespace quarnel
