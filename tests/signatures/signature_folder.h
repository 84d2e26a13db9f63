#pragma once

#include "support/machine_in.h"
#include "support/platform_fixture.h"

namespace quarnel {

// A machine whose system folder is the test's own, so that signature files lie nowhere else.
class SignatureFolderTest : public PlatformTest {
 protected:
  MachineIn machine_{machine(), Scratch()};
};

}  // namespace quarnel
