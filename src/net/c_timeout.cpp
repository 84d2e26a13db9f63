#include "net/c_timeout.h"

#include <chrono>

namespace quarnel {

void TimeOutSupport::DestroyTimerWindow() {
  hasWindow_ = false;
  for (CTimeout* timeout : timeouts_) timeout->timer_.Stop();
}

CTimeout::CTimeout(TimeOutSupport& support) : support_(support), timer_(support.host_) {
  support_.hasWindow_ = true;
  support_.timeouts_.push_back(this);
  timer_.Tick = [this] {
    if (const Handler raise = TimeOut) raise();
  };
}

CTimeout::~CTimeout() {
  support_.DestroyTimerWindow();
  std::erase(support_.timeouts_, this);
}

void CTimeout::SetTimer() {
  if (!support_.hasWindow_) return;
  timer_.Restart(std::chrono::seconds(seconds_));
  timer_.Start();
}

void CTimeout::StartTimer() {
  if (seconds_ <= 0) return;
  if (!hasId_) {
    hasId_ = true;
    ++support_.running_;
  }
  SetTimer();
}

void CTimeout::StopTimer() {
  if (!hasId_) return;
  timer_.Stop();
  --support_.running_;
}

void CTimeout::Reset() {
  if (hasId_) SetTimer();
}

}  // namespace quarnel
