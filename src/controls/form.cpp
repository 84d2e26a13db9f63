#include "controls/form.h"

#include <algorithm>

#include "base/text.h"
#include "controls/host.h"

namespace quarnel {

Form::Form(Host& host, std::string name) : host_(host), name_(std::move(name)) {}

Form::~Form() { host_.Forget(*this); }

void Form::SetCaption(std::string_view caption) {
  caption_ = caption;
  ++revision_;
}

void Form::SetTag(std::string_view tag) {
  tag_ = tag;
  ++revision_;
}

void Form::SetShowInTaskbar(bool show) {
  showInTaskbar_ = show;
  ++revision_;
}

void Form::SetWindowState(WindowState state) {
  if (windowState_ == state) return;
  windowState_ = state;
  ++revision_;
  if (visible_) Form_Resize();
}

void Form::SetTopMost(bool topMost) {
  if (topMost_ == topMost) return;
  topMost_ = topMost;
  ++revision_;
}

void Form::ZOrder() {
  ++frontRequests_;
  ++revision_;
}

void SetTopMostWindow(Form& form, bool topMost) { form.SetTopMost(topMost); }

void Form::SetPlace(const ScreenArea& place) {
  if (place_ == place) return;
  place_ = place;
  ++revision_;
}

void Form::Load() {
  if (state_ == State::kLoaded) return;
  state_ = State::kLoaded;
  host_.Add(*this);
  Form_Load();
}

void Form::Show() {
  Load();
  if (!IsLoaded() || visible_) return;
  visible_ = true;
  ++revision_;
  Form_Resize();
  Activate();
}

void Form::ShowModal() {
  Show();
  if (visible_) host_.RunModal(*this);
}

void Form::Hide() {
  if (!visible_) return;
  visible_ = false;
  ++revision_;
}

void Form::Activate() { Form_Activate(); }

void Form::Form_QueryUnload(bool&, UnloadMode) {}

bool Form::Close(UnloadMode mode) {
  if (!IsLoaded() || unloading_) return true;
  bool cancel = false;
  Form_QueryUnload(cancel, mode);
  if (cancel) return false;
  if (!IsLoaded()) return true;
  unloading_ = true;
  struct Leave {
    bool& flag;
    ~Leave() { flag = false; }
  } leave{unloading_};
  Form_Unload();
  state_ = State::kUnloaded;
  visible_ = false;
  ++revision_;
  host_.Forget(*this);
  return true;
}

Control* Form::Find(std::string_view name) const {
  const auto found = std::find_if(controls_.begin(), controls_.end(), [&](const Control* control) {
    return EqualText(control->Name(), name);
  });
  return found == controls_.end() ? nullptr : *found;
}

void Form::Unregister(Control& control) { std::erase(controls_, &control); }

}  // namespace quarnel
