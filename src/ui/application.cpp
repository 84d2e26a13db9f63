#include "ui/application.h"

#include "core/product.h"
#include "core/startup.h"

namespace quarnel {

Application::Application(Platform& platform, Host& host, StartOptions options)
    : platform_(platform),
      settings_(platform.registry(), std::string(kProductName)),
      log_(platform.files(), platform.machine(), host, std::string(kProductName)),
      forms_(Services{platform_, host, settings_, log_}, options) {}

bool Application::Main() {
  if (IsPrevInstanceRunning(platform_.desktop(), settings_)) return false;
  settings_.ResetRegistrySettings();
  MainForm().Show();
  return true;
}

}  // namespace quarnel
