#pragma once

#include "base/event_wait.h"

namespace quarnel {

// Something to wait for that a test makes ready.
class SettableToken {
 public:
  SettableToken();
  ~SettableToken();
  SettableToken(const SettableToken&) = delete;
  SettableToken& operator=(const SettableToken&) = delete;

  EventToken Token() const { return EventToken(system_); }
  void Set();
  void Clear();

 private:
  std::intptr_t system_;
};

}  // namespace quarnel
