#pragma once

#include <memory>
#include <string>

#include "platform/platform.h"

namespace quarnel {

// The machine that a test works on, for OpenPlatform. It is a machine folder of its own, removed at
// the end; where the machine is the running system itself it is that one.
class TemporaryMachine {
 public:
  TemporaryMachine();
  ~TemporaryMachine();
  TemporaryMachine(const TemporaryMachine&) = delete;
  TemporaryMachine& operator=(const TemporaryMachine&) = delete;

  // What OpenPlatform takes.
  const std::string& Folder() const { return folder_; }

  // Opens it. On a running system what is changed through this platform is taken back at its end.
  std::unique_ptr<Platform> Open();

 private:
  std::string folder_;
};

}  // namespace quarnel
