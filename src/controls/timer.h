#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controls/clock.h"
#include "controls/control.h"

namespace quarnel {

class Host;

// A timer of a form. It ticks while it is enabled, its interval is above 0 and its form is loaded;
// ticks come only while events are processed, and never inside the timer's own handler.
class Timer : public Control {
 public:
  Timer(Form& form, std::string name, Milliseconds interval, bool enabled);
  ~Timer() override;
  std::string_view Type() const override { return "Timer"; }

  // Switching a timer on starts its interval anew.
  void SetEnabled(bool enabled) override;
  Milliseconds Interval() const { return interval_; }
  void SetInterval(Milliseconds interval);

  std::string ValueText() const override { return FlagText(Enabled()); }
  std::optional<std::string> Property(std::string_view name) const override;

  Handler Tick;

 private:
  friend class Host;
  bool Runs() const;

  Form& owner_;
  Milliseconds interval_;
  Milliseconds due_{0};
  bool inHandler_ = false;
};

}  // namespace quarnel
