#pragma once

#include <memory>

#include "platform/platform.h"
#include "ui/wx/wx.h"

namespace quarnel {

// The program with windows, on the machine that the platform gives; what main() hands over to the
// toolkit.
std::unique_ptr<wxApp> MakeWindowApplication();

}  // namespace quarnel
