#include "platform/machine.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/text.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using MachineTest = PlatformTest;

TEST_F(MachineTest, SpecialFoldersExistAndComeWithoutABackslash) {
  for (const int number : {csidl::kDesktop,
                           csidl::kPrograms,
                           csidl::kPersonal,
                           csidl::kFavorites,
                           csidl::kStartup,
                           csidl::kRecent,
                           csidl::kSendTo,
                           csidl::kStartMenu,
                           csidl::kMyMusic,
                           csidl::kMyVideo,
                           csidl::kNetHood,
                           csidl::kFonts,
                           csidl::kTemplates,
                           csidl::kCommonStartMenu,
                           csidl::kCommonPrograms,
                           csidl::kCommonStartup,
                           csidl::kCommonDesktopDirectory,
                           csidl::kAppData,
                           csidl::kPrintHood,
                           csidl::kLocalAppData,
                           csidl::kInternetCache,
                           csidl::kCookies,
                           csidl::kHistory,
                           csidl::kCommonAppData,
                           csidl::kWindows,
                           csidl::kSystem,
                           csidl::kProgramFiles,
                           csidl::kMyPictures,
                           csidl::kProfile,
                           csidl::kProgramFilesCommon,
                           csidl::kCommonTemplates,
                           csidl::kCommonDocuments,
                           csidl::kCommonAdminTools,
                           csidl::kAdminTools,
                           csidl::kCommonMusic,
                           csidl::kCommonPictures,
                           csidl::kCommonVideo}) {
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

TEST_F(MachineTest, KnowsItsUserAndProgram) {
  EXPECT_NE(machine().UserName(), "");
  EXPECT_EQ(machine().Family(), SystemFamily::kWindowsNt);
  EXPECT_TRUE(EqualText(machine().ExecutableName(), "platform_test"));
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

}  // namespace
}  // namespace quarnel
