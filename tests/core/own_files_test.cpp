#include "core/own_files.h"

#include <gtest/gtest.h>

#include "core/error_log.h"
#include "core/inifile.h"
#include "core/paths.h"
#include "support/failing_files.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

// A user who may write in the program's folder at first, and then not.
class OwnFiles : public PlatformTest {
 protected:
  OwnFiles() { Lock(); }
  void Lock() { failing.denied = {GetPathWithSlash(machine().ProgramFolder())}; }
  void Unlock() { failing.denied.clear(); }
  std::string ReadOwn() { return Read(OwnFileToRead(failing, machine(), path)); }
  void Replace(std::string_view bytes) { ReplaceOwnFile(failing, machine(), path, bytes); }

  FailingFiles failing{files()};
  const std::string path = GetPathWithSlash(machine().ProgramFolder()) + "OwnFile.txt";
  const std::string copy =
      GetSpecialFolderPath(machine(), csidl::kAppData) + "Quarnel\\OwnFile.txt";
};

TEST_F(OwnFiles, StandWhereTheUserMayWriteAndTheNewerIsRead) {
  EXPECT_EQ(OwnFileToRead(failing, machine(), path), path);
  Replace("user's");
  EXPECT_FALSE(Exists(path));
  EXPECT_EQ(ReadOwn(), "user's");
  AppendToOwnFile(failing, machine(), path, "+");
  EXPECT_EQ(ReadOwn(), "user's+");
  // Somebody else wrote it later, or earlier.
  const FileTime written = files().Stat(copy)->modified;
  WriteWholeFile(files(), path, "described");
  for (const int seconds : {1, -1}) {
    files().SetModified(path, written + std::chrono::seconds(seconds));
    EXPECT_EQ(ReadOwn(), seconds > 0 ? "described" : "user's+");
  }
  // With the right to write there is one file again, whatever the clock says.
  Unlock();
  Replace("whole");
  EXPECT_FALSE(Exists(copy));
  EXPECT_EQ(ReadOwn(), "whole");
  // What may not be deleted reads as empty.
  Lock();
  DeleteOwnFile(failing, machine(), path);
  EXPECT_EQ(ReadOwn(), "");
  Unlock();
  DeleteOwnFile(failing, machine(), path);
  EXPECT_FALSE(Exists(path) || Exists(copy));
}

TEST_F(OwnFiles, FoldersAreMadeWhereTheUserMayWrite) {
  const std::string folder = GetPathWithSlash(machine().ProgramFolder()) + "OwnFolder";
  const std::vector<std::string> both = OwnFolders(machine(), folder);
  EXPECT_EQ(both.front(), folder);
  Unlock();
  // One that stands and may not be written is none.
  for (const size_t place : {0U, 1U}) {
    EXPECT_EQ(OwnFolderToWrite(failing, machine(), folder), both.at(place));
    EXPECT_TRUE(files().List(both[place]).empty());
    Lock();
  }
  for (const std::string& made : both) files().DeleteFolder(made);
}

TEST_F(OwnFiles, OtherFailuresGoUpAndLeaveNoCopy) {
  failing.failAt = 1;
  Unlock();
  EXPECT_EQ(ErrorOf([&] { Replace("x"); }), ErrorNumber::kDiskFull);
  EXPECT_FALSE(Exists(copy));
  failing.failAt = 0;
  Lock();
  failing.denied.push_back(GetSpecialFolderPath(machine(), csidl::kAppData));
  EXPECT_EQ(ErrorOf([&] { Replace("x"); }), ErrorNumber::kPermissionDenied);
  EXPECT_EQ(ErrorOf([&] { OwnFileToWrite(failing, machine(), path); }),
            ErrorNumber::kPermissionDenied);
}

TEST_F(OwnFiles, ServeIniFilesAndTheLog) {
  WriteWholeFile(files(), path, "[s]\r\nold=1\r\n");
  cInifile ini(failing, machine());
  ini.SetPath(path);
  ini.SetSection("s");
  ini.SetKey("new");
  ini.SetValue("2");
  EXPECT_TRUE(ini.Success());
  EXPECT_EQ(ReadOwn(), "[s]\r\nold=1\r\nnew=2\r\n");
  EXPECT_EQ(ini.Value(), "2");
  Unlock();
  DeleteOwnFile(failing, machine(), path);

  TestHost host;
  failing.denied = {DataFolder(machine())};
  ErrorLog log(failing, machine(), host, "QuarnelTest");
  Reporting(log, "x", [] { throw RuntimeError(ErrorNumber::kOverflow); });
  const std::string place = OwnFileToRead(failing, machine(), log.Path());
  EXPECT_NE(place, log.Path());
  EXPECT_NE(Read(place).find("Overflow"), std::string::npos);
  files().Delete(place);
}

}  // namespace
}  // namespace quarnel
