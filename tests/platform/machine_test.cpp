#include "platform/machine.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/text.h"
#include "platform/power.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using MachineTest = PlatformTest;

TEST_F(MachineTest, SpecialFoldersExistAndComeWithoutABackslash) {
  // Every number that folder codes of signatures refer to.
  for (const int number :
       {0,  2,  5,  6,  7,  8,  9,  11, 13, 14, 19, 20, 21, 22, 23, 24, 25, 26, 27,
        28, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 43, 45, 46, 47, 48, 53, 54, 55}) {
    const auto folder = machine().SpecialFolder(number);
    ASSERT_TRUE(folder) << number;
    EXPECT_NE(folder->back(), '\\') << *folder;
    const auto entry = files().Stat(*folder);
    EXPECT_TRUE(entry && entry->IsFolder()) << number << ": " << *folder;
  }
  EXPECT_EQ(machine().SpecialFolder(9999), std::nullopt);
  EXPECT_EQ(machine().SpecialFolder(-1), std::nullopt);
  for (const std::string& folder : {machine().SystemDirectory(), machine().ProgramFolder(),
                                    machine().TempFolder().value_or("")}) {
    EXPECT_TRUE(files().Stat(folder)) << folder;
    EXPECT_NE(folder.back(), '\\') << folder;
  }
  EXPECT_TRUE(EqualText(machine().SystemDirectory(), *machine().SpecialFolder(csidl::kSystem)));
}

TEST_F(MachineTest, KnowsItsUserAndSystem) {
  EXPECT_NE(machine().UserName(), "");
  EXPECT_EQ(machine().Family(), SystemFamily::kWindowsNt);
  std::string value;
  EXPECT_TRUE(GetKeyValue(registry(), hive::kLocalMachine,
                          "SOFTWARE\\Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir",
                          value));
  EXPECT_TRUE(EqualText(value, *machine().SpecialFolder(csidl::kProgramFiles)));
}

TEST_F(MachineTest, DrivesAndVolumes) {
  const std::vector<Drive> drives = machine().Drives();
  const auto c = std::find_if(drives.begin(), drives.end(),
                              [](const Drive& drive) { return drive.letter == 'C'; });
  ASSERT_NE(c, drives.end());
  EXPECT_EQ(c->type, DriveType::kFixed);
  EXPECT_TRUE(c->ready);
  const auto volume = machine().Volume("C:\\");
  ASSERT_TRUE(volume);
  EXPECT_NE(volume->fileSystem, "");
  EXPECT_GT(volume->totalBytes, 0U);
  EXPECT_LE(volume->freeBytes, volume->totalBytes);
  char missing = 'C';
  while (std::any_of(drives.begin(), drives.end(),
                     [&](const Drive& drive) { return drive.letter == missing; })) {
    ++missing;
  }
  EXPECT_EQ(machine().Volume(std::string{missing, ':', '\\'}), std::nullopt);
  EXPECT_EQ(machine().Volume(""), std::nullopt);
}

TEST_F(MachineTest, AMachineThatDeclinesGoesOn) {
  EXPECT_EQ(platform().power().CanRestart(), machineFolder().empty());
  EXPECT_FALSE(platform().power().Restart());
  EXPECT_FALSE(ReBootMachine(platform().power()));
}

}  // namespace
}  // namespace quarnel
