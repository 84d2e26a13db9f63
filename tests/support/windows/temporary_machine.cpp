#include "support/temporary_machine.h"

#include "platform/windows/backends.h"

namespace quarnel {

// The system that the tests run on is not theirs to restart.
TemporaryMachine::TemporaryMachine() {
  ReplaceRestartCall([](uint32_t, uint32_t) { return false; });
}
TemporaryMachine::~TemporaryMachine() = default;

}  // namespace quarnel
