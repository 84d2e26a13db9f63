#include "platform/power.h"

#include <utility>

#include "platform/windows/backends.h"
#include "platform/windows/machine/privilege.h"

namespace quarnel {
namespace {

RestartCall& TheRestartCall() {
  static RestartCall call = [](uint32_t flags, uint32_t reason) {
    return ExitWindowsEx(flags, reason) != 0;
  };
  return call;
}

class WindowsPower : public Power {
 public:
  bool AdjustToken() override {
    RaisedPrivilege shutdown(L"SeShutdownPrivilege");
    shutdown.Keep();
    return shutdown.Raised();
  }

  // Without force: programs that refuse to close can stop the restart.
  bool Restart() override { return TheRestartCall()(EWX_REBOOT, 0xFFFFFFFF); }
};

}  // namespace

void ReplaceRestartCall(RestartCall call) { TheRestartCall() = std::move(call); }

std::unique_ptr<Power> MakePower() { return std::make_unique<WindowsPower>(); }

}  // namespace quarnel
