#include "ui/application.h"

#include "core/product.h"
#include "core/startup.h"
#include "ui/wizard/wizard.h"

namespace quarnel {

Application::Application(Platform& platform, Host& host, StartOptions options)
    : platform_(platform),
      options_(options),
      settings_(platform.registry(), std::string(kProductName)),
      log_(platform.files(), platform.machine(), host, std::string(kProductName)),
      forms_(Services{platform_, host, settings_, log_}, options) {}

bool Application::Main() {
  if (IsPrevInstanceRunning(platform_.desktop(), settings_)) return false;
  settings_.ResetRegistrySettings();
  if (options_.runWizard && IsFirstStart(settings_)) {
    platform_.desktop().Announce(kWindowClass, WizardCaption(settings_));
    // The program is there without it, too.
    Reporting(log_, "RunWizard", [&] { RunWizard(forms_); });
  }
  platform_.desktop().Announce(kWindowClass, MainCaption(settings_));
  frmMain& main = MainForm();
  main.Load();
  // Form_Load has shown the window, which is activated behind it all the same.
  if (main.Visible()) {
    main.Activate();
  } else {
    main.Show();
  }
  return true;
}

Application::~Application() { platform_.desktop().Announce(kWindowClass, ""); }

void Application::AnswerForwardRequest() {
  if (!platform_.desktop().TakeForwardRequest()) return;
  // While the wizard runs, its page is all that there is to be seen.
  if (!MainForm().IsLoaded()) {
    for (Form* form : forms_.main().host().LoadedForms()) form->ZOrder();
  } else {
    MainForm().RestoreFromTray();
  }
}

}  // namespace quarnel
