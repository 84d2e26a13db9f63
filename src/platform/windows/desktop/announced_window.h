#pragma once

#include <atomic>
#include <string>

#include "platform/windows/unique_handle.h"

namespace quarnel {

// A top-level window that is never seen and only there to be found by class and caption. It lives
// on a thread of its own and answers the system at once, also while the program is in the middle of
// a scan or has no windows at all. Where it cannot be made, nothing is announced.
class AnnouncedWindow {
 public:
  AnnouncedWindow(std::wstring className, std::wstring caption);
  ~AnnouncedWindow();
  AnnouncedWindow(const AnnouncedWindow&) = delete;
  AnnouncedWindow& operator=(const AnnouncedWindow&) = delete;

  // Whether somebody asked since the last call that the window be shown.
  bool TakeForwardRequest() { return wanted_.exchange(false); }

 private:
  static DWORD WINAPI Run(void* self);
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM data);
  HWND MakeWindow();

  std::wstring className_;
  std::wstring caption_;
  std::atomic<bool> wanted_ = false;
  HWND window_ = nullptr;  // set before ready_ is
  KernelHandle ready_;
  KernelHandle thread_;
};

}  // namespace quarnel
