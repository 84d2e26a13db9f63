#pragma once

#include <chrono>

#include "base/date_time.h"

namespace quarnel {

using Milliseconds = std::chrono::milliseconds;

// Where the program's time comes from.
class Clock {
 public:
  virtual ~Clock() = default;

  // Local date and time.
  virtual DateTime Now() = 0;

  // Time that only goes forward, from an unspecified start: what timers count by. Cheap enough to
  // be asked in every turn of a loop.
  virtual Milliseconds Ticks() = 0;

  // Lets `duration` pass: the real clock sleeps, a virtual one jumps.
  virtual void Pass(Milliseconds duration) = 0;

  // Whether it goes on by itself.
  virtual bool Runs() const = 0;
};

class RealClock : public Clock {
 public:
  DateTime Now() override;
  Milliseconds Ticks() override;
  void Pass(Milliseconds duration) override;
  bool Runs() const override { return true; }
};

// A clock that stands still until it is told to move.
class VirtualClock : public Clock {
 public:
  explicit VirtualClock(DateTime start) : now_(start) {}
  DateTime Now() override { return now_; }
  Milliseconds Ticks() override { return ticks_; }
  void Pass(Milliseconds duration) override {
    now_ += duration;
    ticks_ += duration;
  }
  bool Runs() const override { return false; }
  // Sets date and time; the ticks that timers count by do not jump.
  void SetNow(DateTime now) { now_ = now; }

 private:
  DateTime now_;
  Milliseconds ticks_{0};
};

}  // namespace quarnel
