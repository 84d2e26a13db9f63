// Instances on a machine folder find each other by locked files.

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/platform_fixture.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

class PosixDesktopTest : public PlatformTest {
 protected:
  fs::path Instances() { return fs::path(machineFolder()) / "instances"; }
  std::ptrdiff_t FilesLeft() {
    return std::distance(fs::directory_iterator(Instances()), fs::directory_iterator());
  }
};

TEST_F(PosixDesktopTest, ForgetsAProcessThatDied) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  if (child == 0) {
    const auto own = OpenPlatform(machineFolder());
    own->desktop().Announce("TestClass", "A title");
    if (write(ready[1], "", 1) != 1) _exit(1);
    for (;;) pause();
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  EXPECT_TRUE(platform().desktop().FindWindow("TestClass", "A title"));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_EQ(FilesLeft(), 1);
  EXPECT_FALSE(platform().desktop().FindWindow("TestClass", "A title"));
  EXPECT_EQ(FilesLeft(), 0);
  close(ready[0]);
  close(ready[1]);
}

TEST_F(PosixDesktopTest, LeavesEverythingElseInTheFolderAlone) {
  fs::create_directory(Instances());
  std::ofstream(Instances() / "notes") << "text";
  std::ofstream(Instances() / "12x") << "text";
  fs::create_directory(Instances() / "1");
  ASSERT_EQ(mkfifo((Instances() / "2").c_str(), 0600), 0);
  fs::create_symlink(Instances() / "notes", Instances() / "3");
  EXPECT_FALSE(platform().desktop().FindWindow("TestClass", "A title"));
  for (const WindowId id : {2U, 77U}) platform().desktop().BringForward(id);
  EXPECT_EQ(FilesLeft(), 5);

  // A link in the place of the folder leads nowhere.
  const fs::path elsewhere = fs::path(machineFolder()) / "elsewhere";
  fs::rename(Instances(), elsewhere);
  std::ofstream(elsewhere / "4") << "text";
  fs::create_symlink(elsewhere, Instances());
  EXPECT_FALSE(platform().desktop().FindWindow("TestClass", "A title"));
  platform().desktop().Announce("TestClass", "A title");
  EXPECT_FALSE(platform().desktop().FindWindow("TestClass", "A title"));
  EXPECT_EQ(FilesLeft(), 6);
}

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
