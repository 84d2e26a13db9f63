#include "support/temporary_machine.h"

#include "platform/windows/backends.h"
#include "support/windows/undone_platform.h"

namespace quarnel {

// The system that the tests run on is not theirs to restart.
TemporaryMachine::TemporaryMachine() {
  ReplaceRestartCall([](uint32_t, uint32_t) { return false; });
}
TemporaryMachine::~TemporaryMachine() = default;

std::unique_ptr<Platform> TemporaryMachine::Open() {
  return MakeUndonePlatform(OpenPlatform(folder_));
}

}  // namespace quarnel
