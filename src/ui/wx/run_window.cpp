#include "ui/wx/run_window.h"

#include "base/runtime_error.h"
#include "core/paths.h"
#include "core/product.h"
#include "ui/application.h"
#include "ui/wx/message_dialog.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"
#include "ui/wx/wx_host.h"

namespace quarnel {
namespace {

class WindowApplication : public wxApp {
 public:
  WindowApplication() { SetAppName(ToWx(kProductName)); }

  bool OnInit() override {
    // Idle time and menu states are nobody's concern: what changes says so.
    wxIdleEvent::SetMode(wxIDLE_PROCESS_SPECIFIED);
    wxUpdateUIEvent::SetMode(wxUPDATE_UI_PROCESS_SPECIFIED);
    SetExitOnFrameDelete(false);
    try {
      platform_ = OpenPlatform({});
    } catch (const RuntimeError& error) {
      ShowMessage(nullptr, {.text = error.Description(),
                            .title = std::string(kProductName),
                            .icon = MessageIcon::kCritical});
      return false;
    }
    host_ = std::make_unique<WxHost>([this](const std::string& location) {
      return ReadWholeFile(platform_->files(), location);
    });
    host_->watch = [this] {
      if (application_) application_->AnswerForwardRequest();
    };
    Bind(wxEVT_END_SESSION, [this](wxCloseEvent&) { host_->EndSession(); });
    CallAfter([this] { Start(); });
    return true;
  }
  int OnExit() override {
    application_.reset();
    host_.reset();
    platform_.reset();
    return wxApp::OnExit();
  }

 private:
  void Start() {
    native::InitControls();
    bool started = false;
    host_->Act([&] {
      application_ = std::make_unique<Application>(*platform_, *host_, StartOptions{});
      started = application_->Main();
    });
    // Nothing is on the screen then by which a user could end it.
    if (!started) host_->Act([this] { host_->EndProcess(); });
  }

  std::unique_ptr<Platform> platform_;
  std::unique_ptr<WxHost> host_;
  std::unique_ptr<Application> application_;
};

}  // namespace

std::unique_ptr<wxApp> MakeWindowApplication() { return std::make_unique<WindowApplication>(); }

}  // namespace quarnel
