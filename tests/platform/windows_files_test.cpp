// What only a running Windows has: paths in the system's own forms, names that its usual calls do
// not reach, files that others hold.

#include <gmock/gmock.h>

#include "platform/machine_folder.h"
#include "platform/windows/files/system_path.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using enum ErrorNumber;

class WindowsFilesTest : public PlatformTest {
 protected:
  // Makes a file by the system's own call, without its rules for names.
  void Plant(std::wstring_view name) {
    const std::wstring path = LR"(\\?\)" + Wide(Scratch()) + L"\\" + std::wstring(name);
    const KernelHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(file.Valid()) << GetLastError();
  }
};

TEST_F(WindowsFilesTest, NamesThatUsualCallsChangeAreReached) {
  for (const std::wstring_view name :
       {L"point.", L"blank ", L"aux.exe", L"con", L"\u0436\u20AC\u4E2D.exe"}) {
    Plant(name);
    const std::string narrow = Narrow(name);
    EXPECT_EQ(Names(Scratch()), std::vector{narrow});
    EXPECT_EQ(Read(Make(narrow)), "x") << narrow;
    files().Delete(Path(narrow));
    EXPECT_TRUE(Names(Scratch()).empty()) << narrow;
  }
}

TEST_F(WindowsFilesTest, PathsTakeTheSystemsForm) {
  const std::string folder = machine().ProgramFolder();
  const std::wstring own = LR"(\\?\)" + Wide(folder);
  const std::wstring drive = own.substr(0, 6);
  const std::pair<std::string_view, std::wstring> cases[] = {
      {"c:/a//b\\", LR"(\\?\C:\a\b)"},
      {"C:", LR"(\\?\C:\)"},
      {"C:\\a\\..\\..\\..\\b.", LR"(\\?\C:\b.)"},
      {R"(\\?\d:\x)", LR"(\\?\D:\x)"},
      {R"(\\server\share)", LR"(\\?\UNC\server\share\)"},
      {R"(//server/share/../../x)", LR"(\\?\UNC\server\share\x)"},
      {R"(\\?\UNC\server\share\x)", LR"(\\?\UNC\server\share\x)"},
      {"name.ini", own + L"\\name.ini"},
      {"\\name.ini", drive + L"\\name.ini"},
  };
  for (const auto& [path, system] : cases) EXPECT_EQ(SystemPath(path), system) << path;
  for (const std::string_view path :
       {"", "1:\\x", "C:\\a:b", "ab:c", R"(\\.\C:)", R"(\\.\pipe\x)", R"(\\server)", R"(\\?\x)",
        R"(\\?\?\C:\x)", "C:\\x*", "C:\\\"x\""}) {
    EXPECT_EQ(ErrorOf([&] { SystemPath(path); }), kBadFileName) << path;
  }
  EXPECT_EQ(PlainPath("c:\\a b\\c.d"), LR"(C:\a b\c.d)");
  EXPECT_EQ(PlainPath(R"(\\server\share\x)"), LR"(\\server\share\x)");
  for (const std::string_view path : {"C:\\a.\\b", "C:\\a\\b ", "C:\\a\\b."}) {
    EXPECT_EQ(PlainPath(path), SystemPath(path)) << path;
  }
}

TEST_F(WindowsFilesTest, FilesThatOthersHoldAreRefused) {
  const std::string path = Make("held");
  const std::string free = Make("free");
  const KernelHandle held(
      CreateFileW(SystemPath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(held.Valid());
  const auto denied = [](auto&& action) { EXPECT_EQ(ErrorOf(action), kPermissionDenied); };
  denied([&] { files().Open(path, OpenMode::kRead); });
  denied([&] { files().Delete(path); });
  denied([&] { files().Copy(path, Path("copy")); });
  denied([&] { files().Copy(free, path); });
  denied([&] { files().Move(path, Path("moved")); });
  // It is still seen.
  EXPECT_EQ(files().Stat(path)->size, 1U);
}

TEST_F(WindowsFilesTest, HiddenFilesAreReplacedAndEmptied) {
  using namespace file_attribute;
  const std::string path = Make("hidden", "first");
  files().SetAttributes(path, kHidden | kSystem);
  EXPECT_EQ(Read(Make("hidden", "2")), "2");
  EXPECT_NE(files().Stat(path)->attributes & kHidden, 0U);
  files().Copy(Make("plain", "third"), path);
  EXPECT_EQ(Read(path), "third");
  EXPECT_EQ(files().Stat(path)->attributes & kHidden, 0U);
}

TEST_F(WindowsFilesTest, MovesFilesToAnotherDrive) {
  // A folder on another disk: the memory disk of a system below, or what a drive has for tests.
  std::string other;
  for (const Drive& drive : machine().Drives()) {
    for (const std::string_view folder : {":\\dev\\shm", ":\\Temp"}) {
      const std::string path = std::string(1, drive.letter).append(folder);
      if (drive.letter != 'C' && files().Stat(path)) other = path + "\\QuarnelTest";
    }
  }
  if (other.empty()) GTEST_SKIP() << "there is no other disk";
  DeleteTree(files(), other);
  files().CreateFolder(other);
  const std::string path = Make("file");
  files().SetAttributes(path, file_attribute::kReadOnly);
  EXPECT_FALSE(MoveFileExW(SystemPath(path).c_str(), SystemPath(other + "\\file").c_str(), 0));
  files().Move(path, other + "\\file");
  EXPECT_EQ(Read(other + "\\file"), "x");
  EXPECT_FALSE(Exists(path));
  Make("file", "y");
  EXPECT_EQ(ErrorOf([&] { files().Move(path, other + "\\file"); }), kFileExists);
  // Folders stay on their disk.
  EXPECT_EQ(ErrorOf([&] { files().Move(other, Path("folder")); }), kPathFileAccess);
  EXPECT_EQ(Read(path), "y");
}

TEST_F(WindowsFilesTest, TheMachineIsTheRunningSystem) {
  EXPECT_EQ(ErrorOf([] { OpenPlatform("folder"); }), kInvalidCall);
  EXPECT_EQ(ErrorOf([] { OpenMachine("folder"); }), kInvalidCall);
  EXPECT_EQ(ErrorOf([] { CreateMachine("folder", {}); }), kInvalidCall);
  EXPECT_EQ(ErrorOf([] { HostPathOf(".", "C:\\x"); }), kInvalidCall);
  EXPECT_EQ(OpenMachine(".")->machine().SystemDirectory(), machine().SystemDirectory());
}

}  // namespace
}  // namespace quarnel
