// The shell and the loader at work: a real component is registered, a link that the shell itself
// wrote is read, and the version record of this very program.

#include "core/product.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/win32.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

class WindowsShellTest : public PlatformTest {
 protected:
  // What the component (test_component.cpp) leaves.
  std::string Trace() { return QueryText(registry(), kRoot, Key("Component"), "registered"); }

  static void SaveLink(const std::wstring& link, const std::wstring& target) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IShellLinkW* shellLink = nullptr;
    IPersistFile* file = nullptr;
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                     reinterpret_cast<void**>(&shellLink));
    shellLink->SetPath(target.c_str());
    shellLink->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file));
    EXPECT_EQ(file->Save(link.c_str(), TRUE), S_OK);
    file->Release();
    shellLink->Release();
    CoUninitialize();
  }
};

TEST_F(WindowsShellTest, RegistersARealComponent) {
  const std::string component = Path("\xD0\xB6\xE2\x82\xAC component.dll");
  files().Copy(machine().ProgramFolder() + "\\test_component.dll", component);
  ASSERT_EQ(Trace(), "");
  EXPECT_TRUE(RegisterComponent(platform().shell(), component, true));
  EXPECT_EQ(Trace(), component);
  EXPECT_TRUE(RegisterComponent(platform().shell(), component, false));
  EXPECT_EQ(Trace(), "");
  // An entry that ran and failed.
  EXPECT_FALSE(RegisterComponent(platform().shell(), component, false));
  // It is unloaded again, else it could not be deleted.
  files().Delete(component);
  // A library without the entry.
  EXPECT_FALSE(
      RegisterComponent(platform().shell(), machine().SystemDirectory() + "\\kernel32.dll", true));
}

TEST_F(WindowsShellTest, ReadsTheShellsOwnLinks) {
  const std::string target = Make("\xD0\xB6\xE2\x82\xAC.txt");
  SaveLink(Wide(Path("link.lnk")), Wide(target));
  EXPECT_EQ(platform().shell().ShortcutTarget(Path("link.lnk")), target);
}

TEST_F(WindowsShellTest, ThisProgramOpensItselfAndTellsItsVersion) {
  const std::string own = machine().ProgramFolder() + "\\platform_test.exe";
  EXPECT_EQ(platform().shell().FindExecutable(own), own);
  const auto info = GetFileVersionInfo(platform().versions(), own);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->fileVersion, "3.0.0.4");
  EXPECT_EQ(info->targetSystem, "NT-Win32");
  EXPECT_EQ(info->fileType, "App");
  EXPECT_EQ(GetCompanyName(files(), own, nullptr), kCompanyName);
}

}  // namespace
}  // namespace quarnel
