#pragma once

namespace quarnel {

// The restart of the machine.
class Power {
 public:
  virtual ~Power() = default;
  // Obtains the right to shut the system down; false when the user may not.
  virtual bool AdjustToken() = 0;
  // Asks the system to restart; false when it declined.
  virtual bool Restart() = 0;
};

// AdjustToken, then the restart, whatever the first answered.
bool ReBootMachine(Power& power);

}  // namespace quarnel
