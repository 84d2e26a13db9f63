#include "platform/windows/desktop/announced_window.h"

#include <utility>

namespace quarnel {
namespace {

// Ends the window; WM_CLOSE, which anybody may send, does not.
constexpr UINT kEnd = WM_APP;

}  // namespace

AnnouncedWindow::AnnouncedWindow(std::wstring className, std::wstring caption)
    : className_(std::move(className)),
      caption_(std::move(caption)),
      ready_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
  if (!ready_.Valid()) return;
  thread_.Reset(CreateThread(nullptr, 0, Run, this, 0, nullptr));
  if (thread_.Valid()) WaitForSingleObject(ready_.Get(), INFINITE);
}

AnnouncedWindow::~AnnouncedWindow() {
  if (!thread_.Valid()) return;
  if (window_ != nullptr) PostMessageW(window_, kEnd, 0, 0);
  WaitForSingleObject(thread_.Get(), INFINITE);
}

HWND AnnouncedWindow::MakeWindow() {
  const HINSTANCE program = GetModuleHandleW(nullptr);
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = Procedure;
  windowClass.hInstance = program;
  windowClass.lpszClassName = className_.c_str();
  // It stays registered: a second time is a failure that changes nothing.
  RegisterClassExW(&windowClass);
  return CreateWindowExW(WS_EX_TOOLWINDOW, className_.c_str(), caption_.c_str(), WS_POPUP, 0, 0, 0,
                         0, nullptr, nullptr, program, this);
}

DWORD WINAPI AnnouncedWindow::Run(void* self) {
  auto* const announced = static_cast<AnnouncedWindow*>(self);
  announced->window_ = announced->MakeWindow();
  const bool made = announced->window_ != nullptr;
  SetEvent(announced->ready_.Get());
  MSG message;
  while (made && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  return 0;
}

LRESULT CALLBACK AnnouncedWindow::Procedure(HWND window, UINT message, WPARAM wide, LPARAM data) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(data);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  auto* const self = reinterpret_cast<AnnouncedWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  switch (message) {
    case WM_WINDOWPOSCHANGING: {
      // Whoever shows this window means the program's.
      auto* const position = reinterpret_cast<WINDOWPOS*>(data);
      if (self != nullptr && (position->flags & SWP_SHOWWINDOW) != 0) {
        position->flags &= ~UINT{SWP_SHOWWINDOW};
        self->wanted_ = true;
      }
      return 0;
    }
    case WM_CLOSE:
      return 0;
    case kEnd:
      DestroyWindow(window);
      return 0;
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      return DefWindowProcW(window, message, wide, data);
  }
}

}  // namespace quarnel
