// Real windows: some that the program closes, and the one by which it is found.

#include <gtest/gtest.h>
#include <atomic>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "platform/windows/desktop/standard_streams.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"
#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

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
