#include "platform/desktop.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/windows/backends.h"
#include "platform/windows/desktop/announced_window.h"
#include "platform/windows/wide_text.h"

namespace quarnel {
namespace {

HWND HandleOf(WindowId window) { return reinterpret_cast<HWND>(static_cast<UINT_PTR>(window)); }

WindowId IdOf(HWND window) { return reinterpret_cast<UINT_PTR>(window); }

BOOL CALLBACK Collect(HWND window, LPARAM list) {
  reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  return TRUE;
}

std::wstring CaptionOf(HWND window) {
  constexpr int kLongest = 4096;
  std::wstring caption(kLongest, L'\0');
  caption.resize(static_cast<size_t>(GetWindowTextW(window, caption.data(), kLongest)));
  return caption;
}

class WindowsDesktop : public Desktop {
 public:
  void EnumWindows(const std::function<bool(WindowId, std::string_view)>& visit) override {
    // Visited afterwards: what the caller does is not done inside a call by the system.
    std::vector<HWND> windows;
    ::EnumWindows(Collect, reinterpret_cast<LPARAM>(&windows));
    for (const HWND window : windows) {
      wchar_t className[257] = {};
      if (GetClassNameW(window, className, 257) == 0) continue;  // it is gone
      if (!visit(IdOf(window), Narrow(className))) return;
    }
  }

  void PostClose(WindowId window) override { PostMessageW(HandleOf(window), WM_CLOSE, 0, 0); }

  std::optional<WindowId> FindWindow(std::string_view className,
                                     std::string_view caption) override {
    const std::wstring wideClass = Wide(className);
    const std::wstring wideCaption = Wide(caption);
    // The system folds letter case.
    HWND window = nullptr;
    while ((window = FindWindowExW(nullptr, window, wideClass.c_str(), wideCaption.c_str()))) {
      if (CaptionOf(window) == wideCaption) return IdOf(window);
    }
    return std::nullopt;
  }

  void BringForward(WindowId window) override {
    ShowWindow(HandleOf(window), SW_RESTORE);
    SetForegroundWindow(HandleOf(window));
  }

  void Announce(std::string_view className, std::string_view caption) override {
    announced_.reset();
    if (caption.empty()) return;
    announced_ = std::make_unique<AnnouncedWindow>(Wide(className), Wide(caption));
  }

  bool TakeForwardRequest() override { return announced_ && announced_->TakeForwardRequest(); }

 private:
  std::unique_ptr<AnnouncedWindow> announced_;
};

}  // namespace

std::unique_ptr<Desktop> MakeDesktop() { return std::make_unique<WindowsDesktop>(); }

}  // namespace quarnel
