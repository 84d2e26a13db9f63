#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "controls/clock.h"
#include "controls/control.h"

namespace quarnel {

class Host;

// What a host ticks by its clock: while events are processed, and never inside its own handler. It
// starts at rest.
class HostTimer {
 public:
  explicit HostTimer(Host& host, Milliseconds interval = Milliseconds(0));
  virtual ~HostTimer();
  HostTimer(const HostTimer&) = delete;
  HostTimer& operator=(const HostTimer&) = delete;

  // It ticks while it runs and its interval is above 0. Starting begins the interval anew.
  void Start();
  void Stop() { started_ = false; }
  void Restart(Milliseconds interval);
  Milliseconds Interval() const { return interval_; }

  Handler Tick;

  // For how long ticks would do nothing, as things stand; 0 when the next one might do something.
  // The host may sleep over such ticks: it asks anew after each event, and at least twice a second,
  // since date and time can be set. The ticks that come keep their places in time.
  std::function<Milliseconds()> IdleFor;

 protected:
  virtual bool Runs() const { return started_; }
  // Whether it counts from the loading of this form.
  virtual bool IsOf(const Form&) const { return false; }

 private:
  friend class Host;
  bool CanTick() const { return Runs() && interval_ > Milliseconds(0) && !inHandler_; }
  void SetDue(Milliseconds moment) { due_ = next_ = moment; }
  void SkipIdleTicks(Milliseconds now);

  Host& host_;
  Milliseconds interval_;
  // When its next tick falls due, and the one that is not slept over.
  Milliseconds due_{0};
  Milliseconds next_{0};
  bool started_ = false;
  bool inHandler_ = false;
};

// A timer of a form. It ticks while it is enabled, its interval is above 0 and its form is loaded.
class Timer : public Control, public HostTimer {
 public:
  Timer(Form& form, std::string name, Milliseconds interval, bool enabled);
  std::string_view Type() const override { return "Timer"; }

  // Switching a timer on starts its interval anew.
  void SetEnabled(bool enabled) override;
  void SetInterval(Milliseconds interval);

  std::string ValueText() const override { return FlagText(Enabled()); }
  std::optional<std::string> Property(std::string_view name) const override;

 protected:
  bool Runs() const override;
  bool IsOf(const Form& form) const override { return &form == &owner_; }

 private:
  Form& owner_;
};

}  // namespace quarnel
