#pragma once

#include <string>
#include <string_view>

#include "controls/control.h"

namespace quarnel {

// The icon of a form in the desktop's notification area. It stands there while it is visible; a
// front without such an area keeps it as data (Host::HasTray).
class TrayIcon : public Control {
 public:
  TrayIcon(Form& form, std::string name) : Control(form, std::move(name)) { SetVisible(false); }
  std::string_view Type() const override { return "TrayIcon"; }

  const std::string& Tip() const { return tip_; }
  void SetTip(std::string_view tip) { Assign(tip_, tip); }
  // The image control whose picture the icon shows, by its name; empty for the program's own icon.
  const std::string& Picture() const { return picture_; }
  void SetPicture(std::string_view image) { Assign(picture_, image); }

  std::string ValueText() const override { return tip_; }
  std::optional<std::string> Property(std::string_view name) const override {
    if (name == "picture") return picture_;
    return Control::Property(name);
  }

  // A click by a script is the double-click that does something.
  void ClickByUser() override {
    if (DoubleClick) DoubleClick();
  }
  void RightClickByUser() override {
    if (RightClick) RightClick();
  }

  Handler DoubleClick;
  Handler RightClick;

 private:
  std::string tip_;
  std::string picture_;
};

}  // namespace quarnel
