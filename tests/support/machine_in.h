#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/machine.h"

namespace quarnel {

// A machine with the program and the system's files in a folder of the test's own.
class MachineIn : public Machine {
 public:
  MachineIn(Machine& machine, std::string folder) : machine_(machine), folder_(std::move(folder)) {}
  std::optional<std::string> SpecialFolder(int csidl) override {
    return machine_.SpecialFolder(csidl);
  }
  std::string SystemDirectory() override { return folder_; }
  std::string ProgramFolder() override { return folder_; }
  std::optional<std::string> TempFolder() override { return machine_.TempFolder(); }
  std::optional<SystemFamily> Family() override { return machine_.Family(); }
  std::string UserName() override { return machine_.UserName(); }
  std::vector<Drive> Drives() override { return machine_.Drives(); }
  std::optional<VolumeInfo> Volume(std::string_view root) override { return machine_.Volume(root); }

 private:
  Machine& machine_;
  std::string folder_;
};

}  // namespace quarnel
