#include "controls/host.h"

#include <algorithm>

namespace quarnel {

void Host::DoEvents() {
  const Milliseconds now = clock_->Ticks();
  if (now >= earliest_) FireDue(now);
  if (events_->HasSources()) RunSources(now);
  ProcessFrontEvents(now);
}

// The real clock is looked at far more often than it moves.
void Host::RunSources(Milliseconds now) {
  if (clock_->Runs() && now == lastLook_) return;
  lastLook_ = now;
  events_->Run();
}

std::optional<Milliseconds> Host::NextDue() {
  const Milliseconds now = clock_->Ticks();
  std::optional<Milliseconds> next;
  for (HostTimer* timer : timers_) {
    if (!timer->CanTick()) continue;
    timer->SkipIdleTicks(now);
    if (!next || timer->next_ < *next) next = timer->next_;
  }
  earliest_ = next.value_or(Milliseconds::max());
  return next;
}

HostTimer* Host::FirstDue(Milliseconds now) const {
  HostTimer* first = nullptr;
  for (HostTimer* timer : timers_) {
    if (timer->CanTick() && timer->next_ <= now && (!first || timer->next_ < first->next_)) {
      first = timer;
    }
  }
  return first;
}

void Host::FireDue(Milliseconds now) {
  // Handlers may add, remove and switch timers, and process events themselves, so the next one is
  // looked up anew each time. A timer's next tick is never due at `now` again: the loop ends.
  while (HostTimer* timer = FirstDue(now)) {
    timer->SetDue(now + timer->interval_);
    timer->inHandler_ = true;
    struct Leave {
      Host& host;
      HostTimer* timer;
      ~Leave() {
        const auto& timers = host.timers_;
        if (std::find(timers.begin(), timers.end(), timer) == timers.end()) return;
        timer->inHandler_ = false;
        // Events processed inside the handler have passed this timer over.
        host.earliest_ = std::min(host.earliest_, timer->next_);
      }
    } leave{*this, timer};
    // A copy, since the handler may put another one in its place or end the timer's form.
    if (const Handler tick = timer->Tick) tick();
  }
  NextDue();
}

void Host::Advance(Milliseconds duration) {
  const Milliseconds end = clock_->Ticks() + duration;
  do {
    Step(std::max(end - clock_->Ticks(), Milliseconds(0)));
  } while (clock_->Ticks() < end);
}

void Host::Step(std::optional<Milliseconds> limit) {
  const Milliseconds start = clock_->Ticks();
  std::optional<Milliseconds> pause = limit;
  if (const auto next = NextDue()) {
    const Milliseconds untilNext = std::max(*next - start, Milliseconds(0));
    pause = std::min(pause.value_or(untilNext), untilNext);
  }
  if (pause != Milliseconds(0)) Sleep(pause);
  DoEvents();
}

void Host::Sleep(std::optional<Milliseconds> pause) {
  if (clock_->Runs()) return events_->Wait(pause);
  if (IsUnderWay()) {
    RealClock real;
    const Milliseconds start = real.Ticks();
    events_->Wait(pause);
    const Milliseconds gone = real.Ticks() - start;
    return clock_->Pass(pause ? std::min(gone, *pause) : gone);
  }
  if (pause) clock_->Pass(*pause);
}

[[noreturn]] void Host::EndProcess() { throw ProcessEnded(); }

void Host::SetClock(Clock& clock) {
  clock_ = &clock;
  earliest_ = Milliseconds::max();
  for (HostTimer* timer : timers_) Restart(*timer);
}

void Host::Add(Form& form) {
  forms_.push_back(&form);
  // Its timers count from now on, not from when the form was made.
  for (HostTimer* timer : timers_) {
    if (timer->IsOf(form)) Restart(*timer);
  }
}

void Host::Forget(Form& form) {
  if (std::erase(forms_, &form) > 0) FormForgotten(form);
}

void Host::AddTimer(HostTimer& timer) {
  timers_.push_back(&timer);
  Restart(timer);
}

void Host::RemoveTimer(HostTimer& timer) { std::erase(timers_, &timer); }

void Host::Restart(HostTimer& timer) {
  timer.SetDue(clock_->Ticks() + timer.interval_);
  earliest_ = std::min(earliest_, timer.due_);
}

}  // namespace quarnel
