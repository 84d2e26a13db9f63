#include <sys/statvfs.h>
#include <unistd.h>

#include <string>

#include "base/runtime_error.h"
#include "platform/posix/backends.h"

namespace quarnel {
namespace {

class PosixMachine : public Machine {
 public:
  PosixMachine(const MachineFolder& folder, PathMap& paths) : folder_(folder), paths_(paths) {}

  std::optional<std::string> SpecialFolder(int csidl) override {
    return Layout().SpecialFolder(csidl);
  }
  std::string SystemDirectory() override { return Layout().KnownFolder(csidl::kSystem); }
  std::string ProgramFolder() override { return Layout().programFolder; }

  std::optional<std::string> TempFolder() override { return Layout().tempFolder; }
  std::optional<SystemFamily> Family() override { return folder_.family; }
  std::string UserName() override { return folder_.userName; }

  std::vector<Drive> Drives() override {
    std::vector<Drive> drives;
    for (const PathMap::DriveRoot& root : paths_.Drives()) {
      const auto type = folder_.driveTypes.find(root.letter);
      drives.push_back({root.letter,
                        type == folder_.driveTypes.end() ? DriveType::kFixed : type->second,
                        access((root.host + "/").c_str(), R_OK | X_OK) == 0});
    }
    return drives;
  }

  std::optional<VolumeInfo> Volume(std::string_view root) override {
    PathMap::Location location;
    struct statvfs status = {};
    if (!IgnoringErrors([&] { location = paths_.Locate(root); }) || !location.IsDriveRoot() ||
        statvfs(location.host.c_str(), &status) != 0) {
      return std::nullopt;
    }
    // A folder has no label of its own; the file system is what programs of this system expect.
    return VolumeInfo{"", "NTFS", uint64_t{status.f_blocks} * status.f_frsize,
                      uint64_t{status.f_bavail} * status.f_frsize};
  }

 private:
  const MachineLayout& Layout() const { return paths_.Layout(); }

  const MachineFolder& folder_;
  PathMap& paths_;
};

}  // namespace

std::unique_ptr<Machine> MakeMachine(const MachineFolder& folder, PathMap& paths) {
  return std::make_unique<PosixMachine>(folder, paths);
}

}  // namespace quarnel
