#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "machine/machine_commands.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

class PosixMachineCommandsTest : public PlatformTest {
 protected:
  int Run(const std::vector<std::string>& arguments) {
    return RunMachineTool(arguments, out_, errors_);
  }
  std::ostringstream out_, errors_;
};

TEST_F(PosixMachineCommandsTest, CreatesMachinesAndShowsTheirPaths) {
  const std::string folder = machineFolder() + "/made";
  EXPECT_EQ(Run({"create", folder, "--family", "9x", "--user", "Anna", "--sid", "S-1-5-7"}), 0);
  const auto made = OpenPlatform(folder);
  EXPECT_EQ(made->machine().UserName(), "Anna");
  EXPECT_EQ(made->machine().Family(), SystemFamily::kWindows9x);
  EXPECT_EQ(Run({"create", folder}), 1);
  EXPECT_EQ(Run({"create", folder + "2", "--sid", "x"}), 1);
  EXPECT_FALSE(fs::exists(folder + "2"));
  EXPECT_EQ(Run({"path", folder, "c:/WINDOWS/System32/new.dll"}), 0);
  EXPECT_EQ(out_.str(), fs::canonical(folder).string() + "/drive_c/WINDOWS/system32/new.dll\n");
  EXPECT_EQ(Run({"path", folder, "C:\\a?b"}), 1);
}

TEST_F(PosixMachineCommandsTest, TakesFoldersThatAreNamedFromTheCurrentOne) {
  const fs::path before = fs::current_path();
  fs::current_path(machineFolder());
  for (const char* name : {"bare", "slash/", "./dotted", "new/below", "new/../beside"}) {
    EXPECT_EQ(Run({"create", name}), 0) << name << ": " << errors_.str();
    EXPECT_EQ(Run({"path", name, "C:\\"}), 0) << name;
  }
  fs::current_path(before);
}

TEST_F(PosixMachineCommandsTest, PlantsTheSampleOnTheMachineOfTheProgramsWhenNoneIsNamed) {
  const std::string folder = machineFolder() + "/mine";
  ASSERT_EQ(Run({"create", folder}), 0);
  setenv("QUARNEL_MACHINE", folder.c_str(), 1);
  EXPECT_EQ(Run({"sample"}), 0) << errors_.str();
  unsetenv("QUARNEL_MACHINE");
  EXPECT_TRUE(OpenPlatform(folder)->files().Stat("C:\\WINDOWS\\system32\\QNLFSig.dll"));
}

}  // namespace
}  // namespace quarnel
