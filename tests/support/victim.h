#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>

#include "base/text.h"
#include "machine/embedded.h"
#include "platform/platform.h"

namespace quarnel {

// The identifiers of the running processes of an executable.
inline std::vector<uint32_t> RunningCopies(Processes& processes, std::string_view path) {
  std::vector<uint32_t> ids;
  const auto snapshot = processes.Snapshot();
  if (!snapshot) return ids;
  for (const ProcessRecord& record : *snapshot) {
    if (EqualText(record.executable, path)) ids.push_back(record.id);
  }
  return ids;
}

// True as soon as `condition` holds, false when it does not within some seconds.
template <typename Condition>
bool Eventually(Condition&& condition) {
  for (int turn = 0; turn < 500; ++turn) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return condition();
}

// A copy of the sample program that runs from a place on the machine's drive, for a minute at most,
// and ends with this object.
class Victim {
 public:
  Victim(Platform& platform, std::string path) : platform_(platform), path_(std::move(path)) {
    WriteWholeFile(platform.files(), path_, EmbeddedBytes("quarnel-sample-program"));
    if (!platform.shell().Run(path_, "60")) return;
    Eventually([&] {
      const auto ids = RunningCopies(platform_.processes(), path_);
      if (!ids.empty()) id_ = ids.front();
      return !ids.empty();
    });
  }
  ~Victim() {
    platform_.processes().Terminate(id_, 0);
    platform_.processes().WaitForEnd(id_, std::chrono::seconds(10));
  }
  Victim(const Victim&) = delete;
  Victim& operator=(const Victim&) = delete;

  // 0 when it could not be started.
  uint32_t Id() const { return id_; }
  const std::string& Path() const { return path_; }

 private:
  Platform& platform_;
  std::string path_;
  uint32_t id_ = 0;
};

}  // namespace quarnel
