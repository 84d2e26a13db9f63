#include "ui/application.h"

#include "core/product.h"
#include "core/startup.h"

namespace quarnel {

Application::Application(Platform& platform, Host& host, StartOptions options)
    : platform_(platform),
      host_(host),
      settings_(platform.registry(), std::string(kProductName)),
      log_(platform.files(), platform.machine(), host, std::string(kProductName)),
      splash_([this] {
        return std::make_unique<frmSplash>(Services{platform_, host_, settings_, log_});
      }),
      close_([this] {
        return std::make_unique<frmClose>(Services{platform_, host_, settings_, log_});
      }),
      main_(std::make_unique<frmMain>(Services{platform_, host_, settings_, log_}, splash_, close_,
                                      options)) {}

bool Application::Main() {
  if (IsPrevInstanceRunning(platform_.desktop(), settings_)) return false;
  settings_.ResetRegistrySettings();
  main_->Show();
  return true;
}

}  // namespace quarnel
