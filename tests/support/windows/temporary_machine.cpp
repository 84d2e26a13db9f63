#include "support/temporary_machine.h"

namespace quarnel {

TemporaryMachine::TemporaryMachine() = default;
TemporaryMachine::~TemporaryMachine() = default;

}  // namespace quarnel
