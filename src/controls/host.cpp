#include "controls/host.h"

#include <algorithm>

namespace quarnel {

void Host::DoEvents() {
  const Milliseconds now = clock_->Ticks();
  if (now >= earliest_) FireDue(now);
  ProcessFrontEvents(now);
}

std::optional<Milliseconds> Host::NextDue() const {
  std::optional<Milliseconds> next;
  for (const Timer* timer : timers_) {
    if (timer->Runs() && (!next || timer->due_ < *next)) next = timer->due_;
  }
  return next;
}

Timer* Host::FirstDue(Milliseconds now) const {
  Timer* first = nullptr;
  for (Timer* timer : timers_) {
    if (timer->Runs() && timer->due_ <= now && (!first || timer->due_ < first->due_)) first = timer;
  }
  return first;
}

void Host::FireDue(Milliseconds now) {
  // Handlers may add, remove and switch timers, and process events themselves, so the next one is
  // looked up anew each time. A timer's next tick is never due at `now` again: the loop ends.
  while (Timer* timer = FirstDue(now)) {
    timer->due_ = now + timer->interval_;
    timer->inHandler_ = true;
    struct Leave {
      Host& host;
      Timer* timer;
      ~Leave() {
        const auto& timers = host.timers_;
        if (std::find(timers.begin(), timers.end(), timer) == timers.end()) return;
        timer->inHandler_ = false;
        // Events processed inside the handler have passed this timer over.
        host.earliest_ = std::min(host.earliest_, timer->due_);
      }
    } leave{*this, timer};
    // A copy, since the handler may put another one in its place or end the timer's form.
    if (const Handler tick = timer->Tick) tick();
  }
  earliest_ = NextDue().value_or(Milliseconds::max());
}

void Host::Advance(Milliseconds duration) {
  const Milliseconds end = clock_->Ticks() + duration;
  while (true) {
    const std::optional<Milliseconds> next = NextDue();
    const Milliseconds stop = next ? std::min(*next, end) : end;
    const Milliseconds now = clock_->Ticks();
    if (stop > now) clock_->Pass(stop - now);
    DoEvents();
    if (clock_->Ticks() >= end) return;
  }
}

[[noreturn]] void Host::EndProcess() { throw ProcessEnded(); }

void Host::SetClock(Clock& clock) {
  const Milliseconds shift = clock.Ticks() - clock_->Ticks();
  for (Timer* timer : timers_) timer->due_ += shift;
  earliest_ = Milliseconds(0);
  clock_ = &clock;
}

void Host::Add(Form& form) {
  forms_.push_back(&form);
  // Its timers count from now on, not from when the form was made.
  for (Timer* timer : timers_) {
    if (&timer->owner_ == &form) Restart(*timer);
  }
}

void Host::Forget(Form& form) {
  if (std::erase(forms_, &form) > 0) FormForgotten(form);
}

void Host::AddTimer(Timer& timer) {
  timers_.push_back(&timer);
  Restart(timer);
}

void Host::RemoveTimer(Timer& timer) { std::erase(timers_, &timer); }

void Host::Restart(Timer& timer) {
  timer.due_ = clock_->Ticks() + timer.interval_;
  earliest_ = std::min(earliest_, timer.due_);
}

}  // namespace quarnel
