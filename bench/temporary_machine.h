#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/machine_folder.h"

namespace quarnel {

// A new machine folder among the temporary files, removed at the end.
class TemporaryMachine {
 public:
  TemporaryMachine() {
    folder_ = (std::filesystem::temp_directory_path() / "quarnel-bench-XXXXXX").string();
    if (mkdtemp(folder_.data()) == nullptr) throw std::runtime_error("no folder for a machine");
    CreateMachine(folder_, {});
  }
  ~TemporaryMachine() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TemporaryMachine(const TemporaryMachine&) = delete;
  TemporaryMachine& operator=(const TemporaryMachine&) = delete;

  const std::string& Folder() const { return folder_; }
  std::string Host(std::string_view windowsPath) const { return HostPathOf(folder_, windowsPath); }

 private:
  std::string folder_;
};

}  // namespace quarnel
