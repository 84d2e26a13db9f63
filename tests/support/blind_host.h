#pragma once

#include "base/runtime_error.h"
#include "support/test_host.h"

namespace quarnel {

// A host whose screen cannot be measured while it is broken.
class BlindHost : public TestHost {
 public:
  bool blind = false;
  ScreenFacts Screen() const override {
    if (blind) throw RuntimeError(ErrorNumber::kInvalidCall);
    return TestHost::Screen();
  }
};

}  // namespace quarnel
