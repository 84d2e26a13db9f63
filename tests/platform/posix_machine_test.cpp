#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/platform_fixture.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

using PosixMachineTest = PlatformTest;

TEST_F(PosixMachineTest, DrivesAreTheFoldersOfTheMachine) {
  const fs::path folder = machineFolder();
  std::ofstream(folder / "machine.ini") << "[machine]\nuser=user\n[drives]\nd=cdrom\nE=removable\n";
  for (const char* name : {"drive_d", "drive_e", "drive_z", "drive_", "drive_F", "other"}) {
    fs::create_directories(folder / name);
  }
  std::ofstream(folder / "drive_g") << "no folder";
  const auto opened = OpenPlatform(machineFolder());
  std::string drives;
  for (const Drive& drive : opened->machine().Drives()) {
    drives += drive.letter + std::to_string(static_cast<int>(drive.type)) + " ";
  }
  EXPECT_EQ(drives, "C2 D4 E1 Z2 ");
  opened->files().CreateFolder("D:\\disc");
  opened->files().Move("D:\\disc", "D:\\disk");
  WriteWholeFile(opened->files(), "D:\\disk\\f", "1");
  opened->files().Move("D:\\disk\\f", "C:\\f");
  EXPECT_TRUE(fs::exists(folder / "drive_c/f"));
  fs::remove_all(folder / "drive_d");
  EXPECT_EQ(opened->machine().Drives().size(), 3U);
  EXPECT_EQ(ErrorOf([&] { opened->files().List("D:\\"); }), ErrorNumber::kPathNotFound);
}

}  // namespace
}  // namespace quarnel
