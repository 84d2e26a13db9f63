#include "controls/control.h"

#include "base/runtime_error.h"
#include "controls/form.h"
#include "controls/tool_tip.h"

namespace quarnel {

Control::Control(Form& form, std::string name) : form_(form), name_(std::move(name)) {
  form_.Register(*this);
}

Control::~Control() {
  AttachBalloon(nullptr);
  form_.Unregister(*this);
}

void Control::AttachBalloon(CToolTip* balloon) {
  if (balloon_) balloon_->parent_ = nullptr;
  balloon_ = balloon;
  Changed();
}

std::string FlagText(bool flag) { return flag ? "1" : "0"; }

std::optional<std::string> Control::Property(std::string_view name) const {
  if (name == "visible") return FlagText(visible_);
  if (name == "enabled") return FlagText(enabled_);
  if (name == "tag") return tag_;
  if (name == "tooltip") return toolTip_;
  if (name == "balloon" && balloon_) return balloon_->TipText();
  if (name == "type") return std::string(Type());
  if (name == "revision") return std::to_string(revision_);
  return std::nullopt;
}

void Control::SetByUser(std::string_view) {
  throw RuntimeError(ErrorNumber::kInvalidCall, name_ + " takes no value");
}

void Control::ClickByUser() {
  throw RuntimeError(ErrorNumber::kInvalidCall, name_ + " takes no click");
}

void Control::RightClickByUser() {
  throw RuntimeError(ErrorNumber::kInvalidCall, name_ + " takes no right click");
}

}  // namespace quarnel
