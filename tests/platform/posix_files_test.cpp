#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <thread>

#include "base/host_files.h"
#include "platform/held_folders.h"
#include "platform/machine_folder.h"
#include "platform/posix/files/path_map.h"
#include "platform/posix/unique_fd.h"
#include "support/platform_fixture.h"

// What lies between Windows paths and a host tree: names in every case, names that Windows cannot
// have, listings that go stale, links and special files.
namespace quarnel {
namespace {

namespace fs = std::filesystem;
using enum ErrorNumber;

class PosixFilesTest : public PlatformTest {
 protected:
  fs::path Host() const { return fs::path(machineFolder()) / "drive_c" / Scratch().substr(3); }
  static void Plant(const fs::path& path, std::string_view bytes = "x") {
    WriteHostFile(path.string(), bytes);
  }
  static void Denied(const std::function<void()>& action) {
    EXPECT_EQ(ErrorOf(action), kPermissionDenied);
  }
  // The link leads to a folder with "folder" and "file".
  void ExpectNoChangeBehind(Files& files, const std::string& link) {
    SCOPED_TRACE(link);
    const std::string mine = Make("mine"), inside = Path(link + "\\file");
    const std::string absent = Path(link + "\\new");
    Denied([&] { files.Delete(inside); });
    Denied([&] { files.DeleteFolder(Path(link + "\\folder")); });
    Denied([&] { files.CreateFolder(absent); });
    Denied([&] { files.Move(inside, Path("stolen")); });
    Denied([&] { files.Move(mine, absent); });
    Denied([&] { files.ReplaceFile(mine, inside); });
    Denied([&] { files.Copy(mine, absent); });
    Denied([&] { files.SetAttributes(inside, file_attribute::kReadOnly); });
    Denied([&] { files.SetModified(inside, FileTime()); });
    for (const std::string& path : {inside, absent}) {
      Denied([&] { files.Open(path, OpenMode::kCreate); });
    }
  }
  std::string Read(std::string_view name) { return ReadWholeFile(files(), Path(name)); }
  bool Exists(std::string_view name) { return files().Stat(Path(name)).has_value(); }
  std::vector<std::string> Names() { return PlatformTest::Names(Scratch()); }
};

TEST_F(PosixFilesTest, NamesThatDifferInCaseOnlyAreAllReached) {
  for (const char* name : {"NAME", "Name", "name"}) Plant(Host() / name, name);
  for (const char* name : {"NAME", "Name", "name"}) EXPECT_EQ(Read(name), name);
  // Any other spelling gets the first in order, however the host lists them.
  EXPECT_EQ(Read("nAmE"), "NAME");
  EXPECT_EQ(Names(), (Strings{"NAME", "Name", "name"}));

  fs::create_directories(Host() / "Folder");
  Plant(Host() / "Folder/inner", "1");
  EXPECT_EQ(Read("folder\\inner"), "1");
  fs::create_directories(Host() / "folder");
  Plant(Host() / "folder/evil", "2");
  EXPECT_EQ(Read("folder\\evil"), "2");
  EXPECT_EQ(Read("Folder\\inner"), "1");
}

TEST_F(PosixFilesTest, NamesThatWindowsCannotHaveAreShownAndReached) {
  const std::string hosts[] = {
      R"(all\:*?"<>|of them)",    "ends in a point.", " ",         "\xEF\x80\xAA", "\xEF\x80\xAA*",
      "\xEF\x81\xBF\xEF\x80\xBA", "\xEF\x81\xBFx",    "line\nend", "...",
  };
  for (const std::string& host : hosts) Plant(Host() / host, host);
  const auto names = Names();
  EXPECT_EQ(std::set(names.begin(), names.end()).size(), std::size(hosts));
  EXPECT_EQ(names.size(), std::size(hosts));
  for (const std::string& name : names) {
    EXPECT_EQ(name.find_first_of("\\:*?\"<>|"), std::string::npos) << name;
    EXPECT_EQ(ShownName(Read(name)), name);
    EXPECT_EQ(HostName(name), Read(name));
  }
  // Written by its shown name a file has the host's one again.
  Make("new\xEF\x80\xBA");
  EXPECT_TRUE(fs::exists(Host() / "new:"));
}

TEST_F(PosixFilesTest, ChangesOfOtherProgramsAreSeenAtOnce) {
  fs::create_directories(Host() / "Watched");
  for (int turn = 0; turn < 200; ++turn) {
    ASSERT_FALSE(Exists("watched\\APPEARS")) << turn;
    Plant(Host() / "Watched/appears");
    ASSERT_TRUE(Exists("watched\\APPEARS")) << turn;
    fs::remove(Host() / "Watched/appears");
  }
  // A listing that was kept for a while, and a program that sets the folder's time back.
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  for (int turn = 0; turn < 2; ++turn) EXPECT_FALSE(Exists("watched\\APPEARS"));
  const auto time = fs::last_write_time(Host() / "Watched");
  Plant(Host() / "Watched/appears");
  fs::last_write_time(Host() / "Watched", time);
  EXPECT_TRUE(Exists("watched\\APPEARS"));

  fs::rename(Host() / "Watched", Host() / "moved");
  EXPECT_FALSE(Exists("watched\\APPEARS"));
  EXPECT_FALSE(Exists("watched"));
  fs::create_directories(Host() / "WATCHED");
  Plant(Host() / "WATCHED/other");
  EXPECT_TRUE(Exists("watched\\OTHER"));
}

TEST_F(PosixFilesTest, WhatChangesSomethingNeverLeavesTheMachine) {
  const fs::path outside = fs::path(machineFolder() + "-outside");
  fs::create_directories(outside / "folder");
  Plant(outside / "file", "keep");
  fs::create_symlink(outside, Host() / "absolute");
  fs::create_symlink(fs::relative(outside, Host()), Host() / "relative");
  fs::create_symlink(outside / "file", Host() / "to-file");
  fs::create_symlink(outside / "made", Host() / "dangling");
  for (const std::string link : {"absolute", "relative"}) {
    EXPECT_EQ(Read(link + "\\file"), "keep");
    ExpectNoChangeBehind(files(), link);
  }
  Denied([&] { Make("to-file", "lost"); });
  EXPECT_TRUE(ErrorOf([&] { Make("dangling", "lost"); }));
  EXPECT_FALSE(fs::exists(outside / "made"));
  // The links themselves are the machine's own.
  EXPECT_TRUE(files().Stat(Path("absolute"))->IsFolder());
  EXPECT_NE(files().Stat(Path("absolute"))->attributes & file_attribute::kReparsePoint, 0U);
  files().DeleteFolder(Path("absolute"));
  files().DeleteFolder(Path("relative"));
  files().Delete(Path("to-file"));
  files().Delete(Path("dangling"));
  EXPECT_EQ(Names(), Strings{"mine"});
  EXPECT_EQ(ReadHostFile((outside / "file").string()), "keep");
  fs::remove_all(outside);
}

TEST_F(PosixFilesTest, LinksWithinTheMachineAreFollowed) {
  fs::create_directories(Host() / "real");
  fs::create_symlink(Host() / "real", Host() / "link");
  fs::create_symlink("real/file", Host() / "to-file");
  Make("LINK\\file", "1");
  Make("to-file", "2");
  EXPECT_EQ(Read("real\\file"), "2");
  fs::create_symlink("loop", Host() / "loop");
  EXPECT_TRUE(Exists("loop"));
  EXPECT_FALSE(Exists("loop\\x"));
  EXPECT_TRUE(ErrorOf([&] { files().Open(Path("loop"), OpenMode::kRead); }));
  files().Delete(Path("loop"));
}

TEST_F(PosixFilesTest, WithoutLinksNothingBehindALinkIsTouched) {
  Files& safe = files().WithoutLinks();
  fs::create_directories(Host() / "real/folder");
  Plant(Host() / "real/file", "keep");
  fs::create_directory_symlink("real", Host() / "link");
  fs::create_symlink("real/file", Host() / "to-file");
  ExpectNoChangeBehind(safe, "LINK");
  Denied([&] { safe.Copy(Path("to-file"), Path("copy")); });
  Denied([&] { safe.Copy(Path("mine"), Path("to-file")); });
  Denied([&] { safe.SetAttributes(Path("to-file"), file_attribute::kReadOnly); });
  Denied([&] { safe.List(Path("link")); });
  for (const std::string& path : {Path("link\\file"), Path("link\\new"), Path("to-file")}) {
    Denied([&] { safe.Open(path, OpenMode::kRead); });
  }
  Denied([&] { safe.Open(Path("to-file"), OpenMode::kCreate); });
  EXPECT_FALSE(safe.Stat(Path("link\\file")));
  EXPECT_EQ(Read("real\\file"), "keep");
  // What is no link works as ever, and a link itself can be moved and deleted.
  safe.Copy(Path("real\\file"), Path("REAL\\folder\\copy"));
  EXPECT_EQ(ReadWholeFile(safe, Path("real\\folder\\copy")), "keep");
  EXPECT_EQ(safe.List(Path("real")).size(), 2U);
  EXPECT_TRUE(safe.Stat(Path("link")));
  safe.Move(Path("to-file"), Path("moved"));
  safe.Delete(Path("moved"));
  safe.DeleteFolder(Path("link"));
  EXPECT_EQ(Names(), (Strings{"mine", "real"}));
}

TEST_F(PosixFilesTest, AHeldFolderStaysTheSame) {
  fs::create_directories(Host() / "Way/folder");
  fs::create_directories(Host() / "other");
  const auto folders = files().WithoutLinks().HoldFolders();
  HeldFolder& folder = folders->Make(Path("way\\FOLDER"));
  folder.Create("begun")->Write("1");
  fs::rename(Host() / "Way/folder", Host() / "moved");
  fs::create_directory_symlink("../other", Host() / "Way/folder");
  folder.PutInPlace("begun", "done");
  folder.Create("more")->Write("2");
  folders->Flush();
  EXPECT_EQ(Read("moved\\done") + Read("moved\\more"), "12");
  EXPECT_TRUE(fs::is_empty(Host() / "other"));
  // Who comes now meets the link.
  const auto later = files().WithoutLinks().HoldFolders();
  EXPECT_EQ(later->Find(Path("Way\\folder")), nullptr);
  for (const char* name : {"Way\\folder", "Way\\folder\\new"}) {
    Denied([&] { later->Make(Path(name)); });
  }
  EXPECT_TRUE(fs::is_empty(Host() / "other"));
  // A link at the end is neither read, nor written through, nor dressed.
  fs::create_symlink("done", Host() / "moved/link");
  Denied([&] { folder.OpenForReading("link"); });
  Denied([&] { folder.SetTimes("link", {}); });
  folder.Create("link")->Write("mine");
  EXPECT_EQ(Read("moved\\done") + Read("moved\\link"), "1mine");
}

TEST_F(PosixFilesTest, HeldFoldersKnowEveryLetterCase) {
  fs::create_directories(Host() / "Case");
  Plant(Host() / "Case/Planted", "1");
  const auto folders = files().WithoutLinks().HoldFolders();
  HeldFolder& folder = folders->Make(Path("cASE"));
  EXPECT_EQ(&folders->Make(Path("CASE")), &folder);
  EXPECT_FALSE(folder.Stat("missing"));
  EXPECT_EQ(folder.Stat("PLANTED")->name, "Planted");
  folder.Create("New")->Write("2");
  EXPECT_EQ(folder.Stat("NEW")->name, "New");
  // A missing folder is made in the one that stands, however it is written.
  folders->Make(Path("case\\inner\\Innermost"));
  EXPECT_TRUE(fs::exists(Host() / "Case/inner/Innermost"));
  EXPECT_EQ(Names(), Strings{"Case"});
  // A name that another program makes is seen at once in its own letter case.
  Plant(Host() / "Case/theirs", "3");
  EXPECT_TRUE(folder.Stat("theirs"));
  fs::remove(Host() / "Case/Planted");
  EXPECT_FALSE(folder.Stat("PLANTED"));
}

TEST_F(PosixFilesTest, WhatGetsAProgramsNameMayBeRun) {
  const auto folders = files().HoldFolders();
  HeldFolder& folder = folders->Make(Scratch());
  folder.Create("~1.tmp")->Write("x");
  folder.PutInPlace("~1.tmp", "program.EXE");
  EXPECT_EQ(access((Host() / "program.EXE").c_str(), X_OK), 0);
}

TEST_F(PosixFilesTest, SpecialFilesAreNotOpened) {
  ASSERT_EQ(mkfifo((Host() / "pipe").c_str(), 0666), 0);
  for (const OpenMode mode : {OpenMode::kRead, OpenMode::kReadWrite, OpenMode::kAppend}) {
    EXPECT_EQ(ErrorOf([&] { files().Open(Path("pipe"), mode); }), kDeviceError);
  }
  EXPECT_EQ(files().Stat(Path("pipe"))->size, 0U);
  files().Delete(Path("pipe"));
}

TEST_F(PosixFilesTest, HostPathsOfDrivesGoBackToWindowsPaths) {
  PathMap paths(MachineLayout(fs::canonical(machineFolder()), "user"));
  fs::create_directories(fs::path(machineFolder()) / "drive_q");
  fs::create_directories(fs::path(machineFolder()) / "drive_qq");
  const std::string root = paths.Layout().drivesFolder;
  EXPECT_EQ(paths.ToWindows(root + "/drive_c"), "C:\\");
  EXPECT_EQ(paths.ToWindows(root + "/drive_q/a b/c*"), "Q:\\a b\\c\xEF\x80\xAA");
  EXPECT_EQ(paths.ToWindows(root + "/drive_qq/a"), std::nullopt);
  EXPECT_EQ(paths.ToWindows(root), std::nullopt);
  EXPECT_EQ(paths.ToWindows("/"), std::nullopt);
  // A drive within another one, as a drive Z: of the whole host is.
  fs::create_symlink("/", fs::path(machineFolder()) / "drive_z");
  EXPECT_EQ(paths.ToWindows(root + "/drive_c/x"), "C:\\x");
  EXPECT_EQ(paths.ToWindows("/bin/x"), "Z:\\bin\\x");
  EXPECT_EQ(paths.ToWindows("/"), "Z:\\");
}

TEST_F(PosixFilesTest, MachineFoldersAreMadeOnceAndReadWithCare) {
  const std::string base = machineFolder() + "-new";
  CreateMachine(base + "/a/b/", {"M\xC3\xBCller", "S-1-5-21-7", SystemFamily::kWindows9x});
  const auto made = OpenPlatform(base + "/a/b");
  EXPECT_EQ(made->machine().UserName(), "M\xC3\xBCller");
  EXPECT_EQ(made->machine().Family(), SystemFamily::kWindows9x);
  EXPECT_EQ(EnumSubKeys(made->registry(), hive::kCurrentUser,
                        "Software\\Microsoft\\Protected Storage System Provider"),
            Strings{"S-1-5-21-7"});
  EXPECT_EQ(fs::path(HostPathOf(base + "/a/b", "c:\\windows\\new.EXE")),
            fs::canonical(base + "/a/b/drive_c/WINDOWS") / "new.EXE");
  EXPECT_EQ(ErrorOf([&] { CreateMachine(base + "/a/b", {}); }), kFileExists);
  for (const char* name : {"", "a/b", "..", "a\nb", "x ", "[x]"}) {
    MachineOptions options;
    options.userName = name;
    EXPECT_EQ(ErrorOf([&] { CreateMachine(base + "/c", options); }), kInvalidCall);
  }
  EXPECT_FALSE(fs::exists(base + "/c"));
  EXPECT_EQ(ErrorOf([&] { OpenPlatform(base); }), kPathNotFound);
  EXPECT_EQ(ErrorOf([&] { OpenPlatform(base + "/nothing"); }), kPathNotFound);
  for (const char* line :
       {"user", "sid=x", "family=me", "[drives]\nCC=fixed", "[drives]\nC=x", "user=..\\.."}) {
    Plant(base + "/a/b/machine.ini", "; comment\n[machine]\r\n" + std::string(line));
    EXPECT_EQ(ErrorOf([&] { OpenPlatform(base + "/a/b"); }), kInvalidCall) << line;
  }
  fs::remove_all(base);
}

TEST_F(PosixFilesTest, TheDefaultMachineIsNamedByTheEnvironment) {
  const std::string data = machineFolder() + "-data";
  unsetenv("QUARNEL_MACHINE");
  setenv("XDG_DATA_HOME", data.c_str(), 1);
  EXPECT_EQ(OpenPlatform("")->machine().UserName(), "user");
  EXPECT_TRUE(fs::exists(data + "/quarnel/machine/drive_c"));
  Plant(data + "/quarnel/machine/machine.ini", "[machine]\nuser=second\n");
  EXPECT_EQ(OpenPlatform("")->machine().UserName(), "second");
  setenv("QUARNEL_MACHINE", machineFolder().c_str(), 1);
  EXPECT_EQ(OpenPlatform("")->machine().UserName(), "user");
  unsetenv("QUARNEL_MACHINE");
  unsetenv("XDG_DATA_HOME");
  fs::remove_all(data);
}

TEST(UniqueFdTest, ClosesOnceAndMoves) {
  const auto isOpen = [](int fd) { return lseek(fd, 0, SEEK_CUR) >= 0; };
  const int first = open("/", O_RDONLY | O_CLOEXEC);
  const int second = open("/", O_RDONLY | O_CLOEXEC);
  {
    UniqueFd owner(first);
    UniqueFd moved(std::move(owner));
    UniqueFd& itself = moved;
    moved = std::move(itself);
    EXPECT_TRUE(isOpen(first));
    moved = UniqueFd(second);
    EXPECT_TRUE(!isOpen(first) && isOpen(second));
    EXPECT_EQ(moved.Release(), second);
    moved.Reset(second);
  }
  EXPECT_FALSE(isOpen(second));
}

TEST_F(PosixFilesTest, DrivesAreTheFoldersOfTheMachine) {
  const fs::path folder = machineFolder();
  Plant(folder / "machine.ini", "[machine]\nuser=user\n[drives]\nd=cdrom\nE=removable\n");
  for (const char* name : {"drive_d", "drive_e", "drive_z", "drive_", "drive_F", "other"}) {
    fs::create_directories(folder / name);
  }
  Plant(folder / "drive_g", "no folder");
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
