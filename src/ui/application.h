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

  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // Starts the program: ends at once when another instance answers (false), applies a reset that an
  // installer asked for, runs the wizard at the first start, and shows the main window. Other
  // instances find this one from then on.
  bool Main();

  // Brings the program's window to the front if another instance asked for it. A front with windows
  // calls this from time to time.
  void AnswerForwardRequest();

  Forms& forms() { return forms_; }
  frmMain& MainForm() { return forms_.main(); }
  Settings& settings() { return settings_; }

 private:
  Platform& platform_;
  StartOptions options_;
  Settings settings_;
  ErrorLog log_;
  Forms forms_;
};

}  // namespace quarnel
