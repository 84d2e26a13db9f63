#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "machine/machine_commands.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

using PosixMachineCommandsTest = PlatformTest;

TEST_F(PosixMachineCommandsTest, CreatesMachinesAndShowsTheirPaths) {
  std::ostringstream out;
  std::ostringstream errors;
  const std::string folder = machineFolder() + "/made";
  const auto run = [&](const std::vector<std::string>& arguments) {
    return RunMachineTool(arguments, out, errors);
  };
  EXPECT_EQ(run({"create", folder, "--family", "9x", "--user", "Anna", "--sid", "S-1-5-7"}), 0);
  const auto made = OpenPlatform(folder);
  EXPECT_EQ(made->machine().UserName(), "Anna");
  EXPECT_EQ(made->machine().Family(), SystemFamily::kWindows9x);
  EXPECT_EQ(run({"create", folder}), 1);
  EXPECT_EQ(run({"create", folder + "2", "--sid", "x"}), 1);
  EXPECT_FALSE(fs::exists(folder + "2"));
  EXPECT_EQ(run({"path", folder, "c:/WINDOWS/System32/new.dll"}), 0);
  EXPECT_EQ(out.str(), fs::canonical(folder).string() + "/drive_c/WINDOWS/system32/new.dll\n");
  EXPECT_EQ(run({"path", folder, "C:\\a?b"}), 1);
}

TEST_F(PosixMachineCommandsTest, TakesFoldersThatAreNamedFromTheCurrentOne) {
  std::ostringstream out;
  std::ostringstream errors;
  const fs::path before = fs::current_path();
  fs::current_path(machineFolder());
  for (const char* name : {"bare", "slash/", "./dotted", "new/below", "new/../beside"}) {
    EXPECT_EQ(RunMachineTool({"create", name}, out, errors), 0) << name << ": " << errors.str();
    EXPECT_EQ(RunMachineTool({"path", name, "C:\\"}, out, errors), 0) << name;
  }
  fs::current_path(before);
}

}  // namespace
}  // namespace quarnel
