#pragma once

#include <memory>

#include "core/error_log.h"
#include "core/settings.h"
#include "platform/platform.h"
#include "ui/frm_close.h"
#include "ui/frm_main.h"
#include "ui/frm_splash.h"

namespace quarnel {

// The program as a whole: the services and the forms. A front makes one of it and calls Main.
class Application {
 public:
  Application(Platform& platform, Host& host, StartOptions options);

  // Starts the program: ends at once when another instance answers (false), applies a reset that an
  // installer asked for, and shows the main window.
  bool Main();

  frmMain& MainForm() { return *main_; }
  Settings& settings() { return settings_; }

 private:
  Platform& platform_;
  Host& host_;
  Settings settings_;
  ErrorLog log_;
  FormSlot<frmSplash> splash_;
  FormSlot<frmClose> close_;
  std::unique_ptr<frmMain> main_;
};

}  // namespace quarnel
