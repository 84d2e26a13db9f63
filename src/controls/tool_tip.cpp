#include "controls/tool_tip.h"

namespace quarnel {

void CToolTip::Create(Control& parent) {
  Destroy();
  parent.AttachBalloon(this);
  parent_ = &parent;
}

void CToolTip::Destroy() {
  if (parent_) parent_->AttachBalloon(nullptr);
  parent_ = nullptr;
}

void CToolTip::SetLook(ToolTipLook look) {
  if (look == look_) return;
  look_ = std::move(look);
  if (parent_) parent_->Changed();
}

void CToolTip::SetTipText(std::string_view text) {
  ToolTipLook look = look_;
  look.tipText = text;
  SetLook(std::move(look));
}

}  // namespace quarnel
