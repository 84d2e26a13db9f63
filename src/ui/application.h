#pragma once

#include "core/error_log.h"
#include "core/settings.h"
#include "platform/platform.h"
#include "ui/forms.h"

namespace quarnel {

// The program as a whole: the services and the forms. A front makes one of it and calls Main.
class Application {
 public:
  Application(Platform& platform, Host& host, StartOptions options);

  // Starts the program: ends at once when another instance answers (false), applies a reset that an
  // installer asked for, and shows the main window.
  bool Main();

  Forms& forms() { return forms_; }
  frmMain& MainForm() { return forms_.main(); }
  Settings& settings() { return settings_; }

 private:
  Platform& platform_;
  Settings settings_;
  ErrorLog log_;
  Forms forms_;
};

}  // namespace quarnel
