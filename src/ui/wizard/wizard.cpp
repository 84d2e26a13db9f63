#include "ui/wizard/wizard.h"

#include <array>
#include <functional>

#include "ui/forms.h"

namespace quarnel {

bool IsFirstStart(const Settings& settings) {
  return !settings.Has(setting::kJustAfterInstallation.place) &&
         !settings.Has(setting::kNotification.place);
}

void RunWizard(Forms& forms) {
  const std::array<std::function<Form&()>, 5> pages = {
      [&]() -> Form& { return forms.wizard1.Touch(); },
      [&]() -> Form& { return forms.wizard2.Touch(); },
      [&]() -> Form& { return forms.wizard3.Touch(); },
      [&]() -> Form& { return forms.wizard7.Touch(); },
      [&]() -> Form& { return forms.wizard4.Touch(); }};
  std::string& action = forms.wizard.mWizardAction;
  for (size_t page = 0; page < pages.size();) {
    action = wizard_action::kExit;  // what a page leaves that is closed without a button
    pages[page]().ShowModal();
    if (action == wizard_action::kNext || action == wizard_action::kSkip) {
      ++page;
    } else if (action == wizard_action::kBack) {
      page -= page > 0 ? 1 : 0;
    } else {
      break;
    }
  }
  forms.spywareDefinitions.Unload();
}

}  // namespace quarnel
