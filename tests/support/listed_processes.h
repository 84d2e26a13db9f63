#pragma once

#include <optional>
#include <vector>

#include "platform/processes.h"

namespace quarnel {

// A process table of files that lie on the test's machine: which programs run must be known there.
class ListedProcesses : public Processes {
 public:
  std::vector<ProcessRecord> records;
  std::optional<std::vector<ProcessRecord>> Snapshot() override { return records; }
  std::optional<std::string> MainModulePath(uint32_t id) override {
    for (const ProcessRecord& record : records) {
      if (record.id == id && id != 0) return record.executable;
    }
    return std::nullopt;
  }
  bool Terminate(uint32_t, uint32_t) override { return false; }
  bool WaitForEnd(uint32_t, std::chrono::milliseconds) override { return true; }
  uint32_t OwnId() override { return 1; }
};

}  // namespace quarnel
