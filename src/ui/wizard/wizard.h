#pragma once

#include "core/settings.h"

namespace quarnel {

class Forms;

// Whether nobody has ever used the program: neither its first run nor the wizard left a mark.
bool IsFirstStart(const Settings& settings);

// Shows the pages of the set-up wizard one after the other, until the user has gone through them or
// left. Next and Skip go on, Back goes back, Exit and a closed page leave.
void RunWizard(Forms& forms);

}  // namespace quarnel
