#include "controls/timer.h"

#include <algorithm>

#include "controls/form.h"
#include "controls/host.h"

namespace quarnel {

HostTimer::HostTimer(Host& host, Milliseconds interval) : host_(host), interval_(interval) {
  host_.AddTimer(*this);
}

HostTimer::~HostTimer() { host_.RemoveTimer(*this); }

void HostTimer::Start() {
  started_ = true;
  host_.Restart(*this);
}

void HostTimer::Restart(Milliseconds interval) {
  interval_ = interval;
  host_.Restart(*this);
}

void HostTimer::SkipIdleTicks(Milliseconds now) {
  constexpr Milliseconds kLongest(500);
  if (!IdleFor) return;
  const Milliseconds idle = std::clamp(IdleFor(), Milliseconds(0), kLongest);
  // One that the host is late for is not skipped.
  if (idle == Milliseconds(0) && next_ <= now) return;
  const Milliseconds over = std::max(now + idle - due_, Milliseconds(0));
  next_ = due_ + (over + interval_ - Milliseconds(1)) / interval_ * interval_;
}

Timer::Timer(Form& form, std::string name, Milliseconds interval, bool enabled)
    : Control(form, std::move(name)), HostTimer(form.host(), interval), owner_(form) {
  Control::SetEnabled(enabled);
}

void Timer::SetEnabled(bool enabled) {
  if (enabled == Enabled()) return;
  Control::SetEnabled(enabled);
  Restart(Interval());
}

void Timer::SetInterval(Milliseconds interval) {
  if (interval != Interval()) Changed();
  Restart(interval);
}

bool Timer::Runs() const { return Enabled() && owner_.IsLoaded(); }

std::optional<std::string> Timer::Property(std::string_view name) const {
  if (name == "interval") return std::to_string(Interval().count());
  return Control::Property(name);
}

}  // namespace quarnel
