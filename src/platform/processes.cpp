#include "platform/processes.h"

#include <utility>

namespace quarnel {

int Process32_Enum(Processes& processes, std::vector<ProcessRecord>& records,
                   const std::function<void()>& afterEach) {
  records.clear();
  auto snapshot = processes.Snapshot();
  if (!snapshot) return -1;
  for (ProcessRecord& record : *snapshot) {
    records.push_back(std::move(record));
    if (afterEach) afterEach();
  }
  return static_cast<int>(records.size()) - 1;
}

bool KillProcess(Processes& processes, uint32_t id, uint32_t exitCode) {
  if (id <= 1 || id == processes.OwnId()) return false;
  return processes.Terminate(id, exitCode);
}

}  // namespace quarnel
