#include "controls/timer.h"

#include "controls/form.h"
#include "controls/host.h"

namespace quarnel {

Timer::Timer(Form& form, std::string name, Milliseconds interval, bool enabled)
    : Control(form, std::move(name)), owner_(form), interval_(interval) {
  Control::SetEnabled(enabled);
  owner_.host().AddTimer(*this);
}

Timer::~Timer() { owner_.host().RemoveTimer(*this); }

void Timer::SetEnabled(bool enabled) {
  if (enabled == Enabled()) return;
  Control::SetEnabled(enabled);
  owner_.host().Restart(*this);
}

void Timer::SetInterval(Milliseconds interval) {
  Assign(interval_, interval);
  owner_.host().Restart(*this);
}

bool Timer::Runs() const {
  return Enabled() && interval_ > Milliseconds(0) && owner_.IsLoaded() && !inHandler_;
}

std::optional<std::string> Timer::Property(std::string_view name) const {
  if (name == "interval") return std::to_string(interval_.count());
  return Control::Property(name);
}

}  // namespace quarnel
