#include "ui/wx/tray.h"

#include "ui/wx/icons.h"
#include "ui/wx/metrics.h"
#include "ui/wx/text.h"

namespace quarnel {

Tray::Tray(Form& form, TrayIcon& control, const Front& front)
    : form_(&form), control_(control), front_(front) {}

Tray::~Tray() {
  if (icon_) icon_->RemoveIcon();
}

bool Tray::Available() { return wxTaskBarIcon::IsAvailable(); }

void Tray::Sync() {
  if (revision_ == control_.Revision()) return;
  revision_ = control_.Revision();
  if (!control_.Visible()) {
    icon_.reset();
    return;
  }
  if (!icon_) {
    if (!Available()) return;
    icon_ = std::make_unique<wxTaskBarIcon>();
    const auto hand = [this](Handler TrayIcon::*handler) {
      return [this, handler](wxTaskBarIconEvent&) {
        front_.run([this, handler] {
          if (const Handler act = control_.*handler) act();
        });
      };
    };
    icon_->Bind(wxEVT_TASKBAR_LEFT_DCLICK, hand(&TrayIcon::DoubleClick));
    icon_->Bind(wxEVT_TASKBAR_CLICK, hand(&TrayIcon::RightClick));
  }
  const bool attention = control_.Picture().find("Red") != std::string::npos;
  icon_->SetIcon(icons::Get(attention ? "tray-attention" : "quarnel", metrics::kSmallIcon),
                 ToWx(control_.Tip()));
}

}  // namespace quarnel
