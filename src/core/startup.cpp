#include "core/startup.h"

#include <array>

#include "base/runtime_error.h"
#include "core/existing_files.h"
#include "core/paths.h"
#include "core/product.h"

namespace quarnel {

std::string RunningVersion(const Settings& settings) {
  return settings.Get(setting::kApplicationVersion.ReadAs(VersionRecordText()));
}

std::string SignatureVersion(const Settings& settings) {
  return settings.Get(setting::kSignatureVersion.ReadAs(VersionRecordText()));
}

std::string MainCaption(const Settings& settings) {
  return settings.ApplicationName() + " v" + RunningVersion(settings);
}

std::string WizardCaption(const Settings& settings) {
  return "Getting Started with " + settings.ApplicationName();
}

bool IsPrevInstanceRunning(Desktop& desktop, const Settings& settings) {
  for (const std::string& caption : std::array{WizardCaption(settings), MainCaption(settings)}) {
    if (const auto window = desktop.FindWindow(kWindowClass, caption)) {
      desktop.BringForward(*window);
      return true;
    }
  }
  return false;
}

void DeleteOldExe(Files& files, Machine& machine) {
  const std::string path =
      GetPathWithSlash(machine.ProgramFolder()) + "Old" + std::string(kExecutableName) + ".exe";
  IgnoringErrors([&] {
    if (FileExists(files, path)) files.Delete(path);
  });
}

}  // namespace quarnel
