#include "platform/power.h"

#include "platform/posix/backends.h"

namespace quarnel {
namespace {

// A machine folder is not a running system, and the computer around it is not the program's to
// restart.
class NoPower : public Power {
 public:
  bool CanRestart() const override { return false; }
  bool AdjustToken() override { return false; }
  bool Restart() override { return false; }
};

}  // namespace

std::unique_ptr<Power> MakePower() { return std::make_unique<NoPower>(); }

}  // namespace quarnel
