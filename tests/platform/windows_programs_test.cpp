// Real programs: processes and privileges, components and links by the shell itself, windows that
// are closed, consoles that show text, and the handles of it all.

#include <gtest/gtest.h>

#include <atomic>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "core/product.h"
#include "platform/windows/backends.h"
#include "platform/windows/desktop/standard_streams.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/win32.h"
#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

class WindowsProcessesTest : public PlatformTest {
 protected:
  // Whether this process has a privilege raised at the moment.
  static bool IsRaised(const wchar_t* name) {
    KernelHandle token;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive());
    DWORD size = 0;
    GetTokenInformation(token.Get(), TokenPrivileges, nullptr, 0, &size);
    std::vector<DWORD> block(size / sizeof(DWORD) + 1);
    GetTokenInformation(token.Get(), TokenPrivileges, block.data(), size, &size);
    const auto* list = reinterpret_cast<const TOKEN_PRIVILEGES*>(block.data());
    LUID wanted = {};
    LookupPrivilegeValueW(nullptr, name, &wanted);
    for (DWORD i = 0; i < list->PrivilegeCount; ++i) {
      const LUID_AND_ATTRIBUTES& entry = list->Privileges[i];
      if (entry.Luid.LowPart == wanted.LowPart && entry.Luid.HighPart == wanted.HighPart) {
        return (entry.Attributes & SE_PRIVILEGE_ENABLED) != 0;
      }
    }
    return false;
  }
};

TEST_F(WindowsProcessesTest, KillsAProgramOfAnyNameAndDropsThePrivilege) {
  Processes& processes = platform().processes();
  const bool before = IsRaised(L"SeDebugPrivilege");
  const Victim victim(platform(), Path("\xD0\xB6\xE2\x82\xAC victim.exe"));
  ASSERT_NE(victim.Id(), 0U);
  const KernelHandle process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, victim.Id()));
  EXPECT_TRUE(KillProcess(processes, victim.Id(), 42));
  EXPECT_TRUE(processes.WaitForEnd(victim.Id(), std::chrono::seconds(10)));
  DWORD code = 0;
  EXPECT_TRUE(GetExitCodeProcess(process.Get(), &code));
  EXPECT_EQ(code, 42U);
  EXPECT_EQ(IsRaised(L"SeDebugPrivilege"), before);
  // A handle that somebody holds keeps the process known, but it has ended.
  EXPECT_FALSE(processes.MainModulePath(victim.Id()));
  EXPECT_FALSE(processes.Terminate(victim.Id(), 0));
}

TEST_F(WindowsProcessesTest, RestartTakesThePrivilegeAndAsksOnce) {
  std::vector<std::pair<uint32_t, uint32_t>> calls;
  bool answer = true;
  ReplaceRestartCall([&](uint32_t flags, uint32_t reason) {
    EXPECT_TRUE(IsRaised(L"SeShutdownPrivilege"));
    calls.emplace_back(flags, reason);
    return answer;
  });
  EXPECT_TRUE(ReBootMachine(platform().power()));
  answer = false;
  EXPECT_FALSE(ReBootMachine(platform().power()));
  EXPECT_EQ(calls, (std::vector<std::pair<uint32_t, uint32_t>>(2, {2, 0xFFFFFFFF})));
  ReplaceRestartCall([](uint32_t, uint32_t) { return false; });
}

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

// A window on a thread of its own, as another program's is.
class OtherWindow {
 public:
  explicit OtherWindow(const wchar_t* className, DWORD style = 0)
      : thread_([this, className, style] { Run(className, style); }) {
    while (window_ == nullptr) std::this_thread::yield();
  }
  ~OtherWindow() {
    PostMessageW(window_, WM_CLOSE, 0, 0);
    thread_.join();
  }
  OtherWindow(const OtherWindow&) = delete;
  OtherWindow& operator=(const OtherWindow&) = delete;

  bool IsOpen() const { return IsWindow(window_); }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM data) {
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(window, message, wide, data);
  }
  void Run(const wchar_t* className, DWORD style) {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = className;
    RegisterClassW(&windowClass);
    window_ = CreateWindowExW(0, className, L"window", WS_OVERLAPPEDWINDOW | style, 0, 0, 300, 200,
                              nullptr, nullptr, windowClass.hInstance, nullptr);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  }

  std::atomic<HWND> window_ = nullptr;
  std::thread thread_;
};

class WindowsDesktopTest : public PlatformTest {
 protected:
  Desktop& desktop() { return platform().desktop(); }
};

TEST_F(WindowsDesktopTest, ClosesBrowserWindowsOnly) {
  const OtherWindow browser(L"IEFrame", WS_VISIBLE);
  const OtherWindow folder(L"CabinetWClass");
  const OtherWindow editor(L"QuarnelTestEditor");
  int visited = 0;
  desktop().EnumWindows([&](WindowId, std::string_view) { return ++visited < 2; });
  EXPECT_EQ(visited, 2);
  CloseBrowserWindows(desktop());
  EXPECT_TRUE(Eventually([&] { return !browser.IsOpen() && !folder.IsOpen(); }));
  EXPECT_TRUE(editor.IsOpen());
}

TEST_F(WindowsDesktopTest, TheAnnouncedWindowIsNeverSeenNorClosed) {
  constexpr std::string_view kClass = "ThunderRT6FormDC";
  const std::string caption = "Quarnel \xE2\x82\xAC";
  desktop().Announce(kClass, caption);
  const auto id = desktop().FindWindow(kClass, caption);
  ASSERT_TRUE(id);
  const auto window = reinterpret_cast<HWND>(static_cast<UINT_PTR>(*id));
  desktop().BringForward(*id);
  EXPECT_TRUE(Eventually([&] { return desktop().TakeForwardRequest(); }));
  EXPECT_FALSE(IsWindowVisible(window));
  SendMessageW(window, WM_CLOSE, 0, 0);
  EXPECT_EQ(desktop().FindWindow(kClass, caption), id);
  desktop().Announce(kClass, "");
  EXPECT_FALSE(IsWindow(window));
}

TEST(StandardStreams, AConsoleShowsUtf8ThatComesInPieces) {
  FreeConsole();
  ASSERT_TRUE(AllocConsole());
  const KernelHandle console(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                         0, nullptr));
  ASSERT_TRUE(console.Valid());
  const auto buffer = MakeConsoleBuffer(console.Get());
  std::ostream out(buffer.get());
  CONSOLE_SCREEN_BUFFER_INFO before = {};
  ASSERT_TRUE(GetConsoleScreenBufferInfo(console.Get(), &before));
  out << "\xD0";
  out << "\xB6\xE2\x82" << '\xAC' << " 50%\n";
  std::wstring shown(6, L' ');
  DWORD count = 0;
  EXPECT_TRUE(
      ReadConsoleOutputCharacterW(console.Get(), shown.data(), 6, before.dwCursorPosition, &count));
  EXPECT_EQ(shown, L"\x0436\x20AC 50%");

  // More than one call takes; afterwards the cursor stands behind the last character.
  out << std::string(20000, 'x');
  CONSOLE_SCREEN_BUFFER_INFO after = {};
  EXPECT_TRUE(GetConsoleScreenBufferInfo(console.Get(), &after));
  EXPECT_EQ(after.dwCursorPosition.X, 20000 % after.dwSize.X);
  EXPECT_TRUE(out.good());
  FreeConsole();
}

struct Note {
  static inline std::vector<int> closed;
  static int Invalid() { return -1; }
  void operator()(int handle) const { closed.push_back(handle); }
};
using Handle = UniqueHandle<int, Note>;

TEST(UniqueHandle, ClosesEachHandleOnce) {
  Note::closed.clear();
  {
    Handle one(1);
    Handle moved(std::move(one));
    EXPECT_FALSE(one.Valid());  // NOLINT(bugprone-use-after-move)
    Handle two(2);
    two = std::move(moved);
    EXPECT_EQ(Note::closed, std::vector{2});
    Handle& same = two;
    two = std::move(same);
    EXPECT_EQ(two.Get(), 1);
    *two.Receive() = 3;
    EXPECT_EQ(Note::closed, (std::vector{2, 1}));
    EXPECT_TRUE(two.Valid());
    Handle released(4);
    EXPECT_EQ(released.Release(), 4);
    const Handle invalid(-1);
    EXPECT_FALSE(invalid.Valid());
  }
  EXPECT_EQ(Note::closed, (std::vector{2, 1, 3}));
}

}  // namespace
}  // namespace quarnel
