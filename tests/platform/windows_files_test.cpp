// What only a running Windows has: paths in the system's own forms, names that its usual calls do
// not reach, files that others hold.

#include <gmock/gmock.h>

#include "platform/machine_folder.h"
#include "platform/windows/system_path.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

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
    const std::vector<DirectoryEntry> entries = files().List(Scratch());
    ASSERT_EQ(entries.size(), 1U) << narrow;
    EXPECT_EQ(entries[0].name, narrow);
    WriteWholeFile(files(), Path(narrow), "x");
    EXPECT_EQ(ReadWholeFile(files(), Path(narrow)), "x") << narrow;
    files().Delete(Path(narrow));
    EXPECT_TRUE(files().List(Scratch()).empty()) << narrow;
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
    EXPECT_EQ(ErrorOf([&] { SystemPath(path); }), ErrorNumber::kBadFileName) << path;
  }
  EXPECT_EQ(PlainPath("c:\\a b\\c.d"), LR"(C:\a b\c.d)");
  EXPECT_EQ(PlainPath(R"(\\server\share\x)"), LR"(\\server\share\x)");
  for (const std::string_view path : {"C:\\a.\\b", "C:\\a\\b ", "C:\\a\\b."}) {
    EXPECT_EQ(PlainPath(path), SystemPath(path)) << path;
  }
}

TEST_F(WindowsFilesTest, FilesThatOthersHoldAreRefused) {
  WriteWholeFile(files(), Path("held"), "x");
  WriteWholeFile(files(), Path("free"), "x");
  const KernelHandle held(CreateFileW(SystemPath(Path("held")).c_str(), GENERIC_READ, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(held.Valid());
  const auto error = [&](const std::function<void()>& action) { return ErrorOf(action); };
  using enum ErrorNumber;
  EXPECT_EQ(error([&] { files().Open(Path("held"), OpenMode::kRead); }), kPermissionDenied);
  EXPECT_EQ(error([&] { files().Delete(Path("held")); }), kPermissionDenied);
  EXPECT_EQ(error([&] { files().Copy(Path("held"), Path("copy")); }), kPermissionDenied);
  EXPECT_EQ(error([&] { files().Copy(Path("free"), Path("held")); }), kPermissionDenied);
  EXPECT_EQ(error([&] { files().Move(Path("held"), Path("moved")); }), kPermissionDenied);
  // It is still seen.
  EXPECT_EQ(files().Stat(Path("held"))->size, 1U);
}

TEST_F(WindowsFilesTest, HiddenFilesAreReplacedAndEmptied) {
  using namespace file_attribute;
  const auto hide = [&] { files().SetAttributes(Path("hidden"), kHidden | kSystem); };
  WriteWholeFile(files(), Path("hidden"), "first");
  hide();
  WriteWholeFile(files(), Path("hidden"), "2");
  EXPECT_EQ(ReadWholeFile(files(), Path("hidden")), "2");
  EXPECT_NE(files().Stat(Path("hidden"))->attributes & kHidden, 0U);
  WriteWholeFile(files(), Path("plain"), "third");
  files().Copy(Path("plain"), Path("hidden"));
  EXPECT_EQ(ReadWholeFile(files(), Path("hidden")), "third");
  EXPECT_EQ(files().Stat(Path("hidden"))->attributes & kHidden, 0U);
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
  WriteWholeFile(files(), Path("file"), "x");
  files().SetAttributes(Path("file"), file_attribute::kReadOnly);
  EXPECT_FALSE(
      MoveFileExW(SystemPath(Path("file")).c_str(), SystemPath(other + "\\file").c_str(), 0));
  files().Move(Path("file"), other + "\\file");
  EXPECT_EQ(ReadWholeFile(files(), other + "\\file"), "x");
  EXPECT_FALSE(files().Stat(Path("file")));
  WriteWholeFile(files(), Path("file"), "y");
  EXPECT_EQ(ErrorOf([&] { files().Move(Path("file"), other + "\\file"); }),
            ErrorNumber::kFileExists);
  // Folders stay on their disk.
  EXPECT_EQ(ErrorOf([&] { files().Move(other, Path("folder")); }), ErrorNumber::kPathFileAccess);
  EXPECT_EQ(ReadWholeFile(files(), Path("file")), "y");
}

TEST_F(WindowsFilesTest, TheMachineIsTheRunningSystem) {
  using enum ErrorNumber;
  EXPECT_EQ(ErrorOf([] { OpenPlatform("folder"); }), kInvalidCall);
  EXPECT_EQ(ErrorOf([] { OpenMachine("folder"); }), kInvalidCall);
  EXPECT_EQ(ErrorOf([] { CreateMachine("folder", {}); }), kInvalidCall);
  EXPECT_EQ(ErrorOf([] { HostPathOf(".", "C:\\x"); }), kInvalidCall);
  EXPECT_EQ(OpenMachine(".")->machine().SystemDirectory(), machine().SystemDirectory());
}

}  // namespace
}  // namespace quarnel
