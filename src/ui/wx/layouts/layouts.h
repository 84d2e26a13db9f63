#pragma once

#include <vector>

#include "ui/wx/layout.h"

namespace quarnel {

FormLayout MainLayout();
std::vector<FormLayout> DialogLayouts();

}  // namespace quarnel
