#include "display/hand.h"

#include <wx/msw/wrapwin.h>

#include <array>

namespace quarnel::hand {
namespace {

HWND aimed = nullptr;
bool hasClicked = false;

bool IsIn(HWND window, HWND widget) { return window == widget || IsChild(widget, window); }

// Sees which window the system gives each event of the mouse to.
LRESULT CALLBACK NoteClick(int code, WPARAM message, LPARAM data) {
  if (code == HC_ACTION && (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN)) {
    const auto& event = *reinterpret_cast<const MOUSEHOOKSTRUCT*>(data);
    hasClicked = hasClicked || IsIn(event.hwnd, aimed);
  }
  return CallNextHookEx(nullptr, code, message, data);
}

// What the system scales back to exactly this pixel.
LONG Scaled(int pixel, int metric) {
  constexpr int kWhole = 65536;
  const int size = GetSystemMetrics(metric);
  return static_cast<LONG>((int64_t{pixel} * kWhole + size - 1) / size);
}

// An event always says where it happens: what else moves the mouse meanwhile changes nothing.
INPUT MouseEvent(wxPoint place, DWORD flags) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dx = Scaled(place.x, SM_CXSCREEN);
  input.mi.dy = Scaled(place.y, SM_CYSCREEN);
  input.mi.dwFlags = MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_MOVE | flags;
  return input;
}

}  // namespace

void MoveTo(wxPoint place) {
  INPUT move = MouseEvent(place, 0);
  SendInput(1, &move, sizeof(INPUT));
}

bool IsOver(const wxWindow& widget, wxPoint place) {
  POINT mouse{};
  if (!GetCursorPos(&mouse) || mouse.x != place.x || mouse.y != place.y) return false;
  return IsIn(WindowFromPoint(mouse), widget.GetHWND());
}

void Click(const wxWindow& widget, wxPoint place, wxMouseButton button) {
  static const HHOOK hook = SetWindowsHookExW(WH_MOUSE, NoteClick, nullptr, GetCurrentThreadId());
  aimed = widget.GetHWND();
  hasClicked = hook == nullptr;
  const bool left = button == wxMOUSE_BTN_LEFT;
  std::array<INPUT, 2> events = {
      MouseEvent(place, left ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_RIGHTDOWN),
      MouseEvent(place, left ? MOUSEEVENTF_LEFTUP : MOUSEEVENTF_RIGHTUP)};
  SendInput(events.size(), events.data(), sizeof(INPUT));
}

bool HasClicked() { return hasClicked; }

bool TypesInto(const wxWindow& window) { return GetForegroundWindow() == window.GetHWND(); }

}  // namespace quarnel::hand
