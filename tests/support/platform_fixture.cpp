#include "support/platform_fixture.h"

#include "base/text.h"
#include "platform/held_folders.h"

namespace quarnel {

PlatformTest::PlatformTest() : platform_(machine_.Open()) {
  scratch_ = "C:\\QuarnelTest-" + std::to_string(platform_->processes().OwnId());
  DeleteTree(files(), scratch_);
  files().CreateFolder(scratch_);
  DeleteKeyTree(registry(), kRoot, kTestKey, nullptr);
}

PlatformTest::~PlatformTest() {
  DeleteTree(files(), scratch_);
  DeleteKeyTree(registry(), kRoot, kTestKey, nullptr);
}

std::string PlatformTest::Path(std::string_view name) const {
  return Join({scratch_, std::string(name)}, "\\");
}

std::string PlatformTest::Write(std::string path, std::string_view bytes) {
  CreateFolders(files(), PartsOf(path).folder);
  WriteWholeFile(files(), path, bytes);
  return path;
}

std::vector<std::string> PlatformTest::Names(std::string_view folder) {
  std::vector<std::string> names;
  for (const DirectoryEntry& entry : files().List(folder)) names.push_back(entry.name);
  return names;
}

std::string PlatformTest::Key(std::string_view name) {
  return Join({std::string(kTestKey), std::string(name)}, "\\");
}

void DeleteTree(Files& files, const std::string& folder) {
  if (!files.Stat(folder)) return;
  IgnoringErrors([&] {
    for (const DirectoryEntry& entry : files.List(folder)) {
      const std::string path = folder + "\\" + entry.name;
      IgnoringErrors([&] { files.SetAttributes(path, file_attribute::kNormal); });
      const bool isLink = (entry.attributes & file_attribute::kReparsePoint) != 0;
      if (entry.IsFolder() && !isLink) {
        DeleteTree(files, path);
      } else {
        IgnoringErrors([&] { entry.IsFolder() ? files.DeleteFolder(path) : files.Delete(path); });
      }
    }
  });
  IgnoringErrors([&] { files.DeleteFolder(folder); });
}

}  // namespace quarnel
