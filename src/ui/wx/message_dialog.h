#pragma once

#include <functional>

#include "controls/host.h"
#include "ui/wx/wx.h"

namespace quarnel {

// Shows a message box in front of `parent` (null: of everything) and returns the pressed button.
// Escape presses Cancel, or the only button; a question of Yes and No waits for one of them. While
// `isInnermost` says no, another window waits over the box, and an answer ends it after that one.
Answer ShowMessage(
    wxWindow* parent, const MessageBox& box,
    std::function<bool()> isInnermost = [] { return true; });

}  // namespace quarnel
