#include "platform/power.h"

namespace quarnel {

bool ReBootMachine(Power& power) {
  power.AdjustToken();
  return power.Restart();
}

}  // namespace quarnel
