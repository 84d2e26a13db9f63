#pragma once

#include <string>

#include "core/settings.h"
#include "scan/folders.h"
#include "scan/safe_list.h"
#include "support/platform_fixture.h"
#include "support/signature_set.h"

namespace quarnel {

// A machine with the program's data, whose signatures know one planted file, and fresh settings.
class ProgramTest : public PlatformTest {
 protected:
  static constexpr int kProgramFiles = 31;
  static constexpr std::string_view kPlantedLine = "Any,Threat,1,31,Planted.txt,,7\n";

  ProgramTest() {
    // On a running system an earlier test may have left settings behind.
    settings.SaveSetting("Registry Status", "ResetValue", "x");
    settings.ResetRegistrySettings();
    IgnoringErrors([&] { files().Delete(SafeListPath(machine())); });
    Install({.files = std::string(kPlantedLine)});
    WriteWholeFile(files(), planted, "x");
  }
  ~ProgramTest() override {
    IgnoringErrors([&] { files().Delete(planted); });
  }
  void Install(const SignatureSources& sources) { InstallProgramData(files(), machine(), sources); }

  const std::string planted = GetFolder(machine(), kProgramFiles).front() + "Planted.txt";
  Settings settings{registry(), "Quarnel"};
};

}  // namespace quarnel
