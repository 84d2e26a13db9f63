#include "support/temporary_machine.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "platform/machine_folder.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

std::string NewFolder() {
  std::string path = (fs::temp_directory_path() / "quarnel-test-XXXXXX").string();
  if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no folder for the test");
  return path;
}

void Remove(const std::string& folder) {
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

// Making a machine waits for the disk; copying one does not.
struct Original {
  Original() : path(NewFolder()) { CreateMachine(path, {}); }
  ~Original() { Remove(path); }
  Original(const Original&) = delete;
  Original& operator=(const Original&) = delete;
  std::string path;
};

}  // namespace

TemporaryMachine::TemporaryMachine() : folder_(NewFolder()) {
  // No test may close the windows of whoever runs it.
  unsetenv("DISPLAY");
  static const Original original;
  fs::copy(original.path, folder_, fs::copy_options::recursive);
}

TemporaryMachine::~TemporaryMachine() { Remove(folder_); }

std::unique_ptr<Platform> TemporaryMachine::Open() { return OpenPlatform(folder_); }

}  // namespace quarnel
