#pragma once

#include <cstdint>
#include <vector>

#include "controls/host.h"

namespace quarnel {

class CTimeout;

// What all time-outs share (MTimeOutSupport): the window whose timers they are. It stands from the
// making of a time-out to the end of any of them, and takes all its timers with it.
class TimeOutSupport {
 public:
  explicit TimeOutSupport(Host& host) : host_(host) {}

  bool HasWindow() const { return hasWindow_; }
  int Running() const { return running_; }

 private:
  friend class CTimeout;
  void DestroyTimerWindow();

  Host& host_;
  bool hasWindow_ = false;
  int16_t running_ = 0;
  std::vector<CTimeout*> timeouts_;
};

// A time-out by the host's clock. It comes again each period until it is stopped.
class CTimeout {
 public:
  explicit CTimeout(TimeOutSupport& support);
  ~CTimeout();
  CTimeout(const CTimeout&) = delete;
  CTimeout& operator=(const CTimeout&) = delete;

  void StartTimer();
  void StopTimer();
  // A new full period.
  void Reset();

  int32_t TimeOutValue() const { return seconds_; }
  void SetTimeOutValue(int32_t seconds) { seconds_ = seconds; }

  Handler TimeOut;

 private:
  friend class TimeOutSupport;
  void SetTimer();

  TimeOutSupport& support_;
  HostTimer timer_;
  int32_t seconds_ = 0;
  // It had a timer once, and keeps its number when that is stopped.
  bool hasId_ = false;
};

}  // namespace quarnel
