#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quarnel {

struct ProcessRecord {
  uint32_t id = 0;
  uint32_t parentId = 0;
  // The main module's full path where it can be had, else the bare name.
  std::string executable;
};

// The running programs. On a machine folder these are the processes whose executable lies on one of
// the machine's drives.
class Processes {
 public:
  virtual ~Processes() = default;
  // Nothing when the system gives no snapshot.
  virtual std::optional<std::vector<ProcessRecord>> Snapshot() = 0;
  // The path of the main module; nothing when the process is gone or may not be read.
  virtual std::optional<std::string> MainModulePath(uint32_t id) = 0;
  // Ends a process at once; false when it is gone or may not be ended. Raises and drops the debug
  // privilege around the call where the system has one.
  virtual bool Terminate(uint32_t id, uint32_t exitCode) = 0;
  // Waits until a process has ended; false when it still runs after `timeout`.
  virtual bool WaitForEnd(uint32_t id, std::chrono::milliseconds timeout) = 0;
  // The identifier of the program itself.
  virtual uint32_t OwnId() = 0;
};

// All running processes into `records`; the last index, or -1 on failure. Calls `afterEach` per
// record so that events can be processed.
int Process32_Enum(Processes& processes, std::vector<ProcessRecord>& records,
                   const std::function<void()>& afterEach);

// True when the process was ended. Processes 0 and 1 and the program itself are refused.
bool KillProcess(Processes& processes, uint32_t id, uint32_t exitCode);

}  // namespace quarnel
