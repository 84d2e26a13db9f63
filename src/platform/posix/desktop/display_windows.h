#pragma once

#include <functional>
#include <string_view>

#include "platform/desktop.h"

// The windows of other programs on the user's X display, which the variable DISPLAY names. Without
// a display there are none. Source of the properties and messages: the Inter-Client Communication
// Conventions Manual, and the Extended Window Manager Hints of freedesktop.org.
namespace quarnel {

// Calls `visit` with each window that the window manager lists and its class, until it returns
// false.
void EnumDisplayWindows(
    const std::function<bool(WindowId window, std::string_view className)>& visit);

// Asks a window to close, by way of the window manager where it takes such requests. A window that
// knows no such request stays.
void CloseDisplayWindow(WindowId window);

// Whether windows of this class are those of a browser or a file manager.
bool IsDisplayBrowserClass(std::string_view className);

}  // namespace quarnel
