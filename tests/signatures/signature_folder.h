#pragma once

#include <string>
#include <string_view>

#include "support/platform_fixture.h"

namespace quarnel {

// A machine whose system folder is the test's own, so that signature files lie nowhere else.
class FolderMachine : public Machine {
 public:
  explicit FolderMachine(std::string folder) : folder_(std::move(folder)) {}

  std::string SystemDirectory() override { return folder_; }
  std::optional<std::string> SpecialFolder(int) override { return std::nullopt; }
  std::string ProgramFolder() override { return folder_; }
  std::string ExecutableName() override { return "test"; }
  std::optional<std::string> TempFolder() override { return std::nullopt; }
  std::optional<SystemFamily> Family() override { return std::nullopt; }
  std::string UserName() override { return {}; }
  std::vector<Drive> Drives() override { return {}; }
  std::optional<VolumeInfo> Volume(std::string_view) override { return std::nullopt; }

 private:
  std::string folder_;
};

class SignatureFolderTest : public PlatformTest {
 protected:
  void Put(std::string_view name, std::string_view bytes) {
    WriteWholeFile(files(), Path(name), bytes);
  }

  FolderMachine machine_{Scratch()};
};

}  // namespace quarnel
