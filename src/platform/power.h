#pragma once

namespace quarnel {

// The restart of the machine.
class Power {
 public:
  virtual ~Power() = default;
  // False where no restart can be asked for at all.
  virtual bool CanRestart() const { return true; }
  // Obtains the right to shut the system down; false when the user may not.
  virtual bool AdjustToken() = 0;
  // Asks the system to restart; false when it declined.
  virtual bool Restart() = 0;
};

// AdjustToken, then the restart, whatever the first answered.
bool ReBootMachine(Power& power);

}  // namespace quarnel
