// Shows every window of the program, one after the other, on the sample machine, which is scanned
// and cleaned meanwhile. tools/make-window-pictures runs it and takes the pictures.

#include <wx/uiaction.h>

#include <functional>
#include <iostream>
#include <optional>

#include "base/runtime_error.h"
#include "core/paths.h"
#include "core/setting_keys.h"
#include "ui/application.h"
#include "ui/wx/wx_host.h"

namespace quarnel {
namespace {

// The windows, whose questions answer themselves.
class PictureHost : public WxHost {
 public:
  using WxHost::WxHost;

  // Asks on the standard output for a picture of the form's window, and goes on when a line on the
  // standard input says that it is taken.
  void Take(const Form& form, std::string_view name) {
    WaitUntilPainted();
    const wxRect place = WindowOf(form)->Window()->GetScreenRect();
    std::cout << name << ' ' << place.width << 'x' << place.height << '+' << place.x << '+'
              << place.y << std::endl;
    std::string taken;
    std::getline(std::cin, taken);
  }
  void Click(const Form& form, std::string_view control) {
    if (const Binding* binding = WindowOf(form)->Find(control)) binding->Widget()->SetFocus();
    Act([&] { form.Find(control)->ClickByUser(); });
  }
  // Clicks a control, and takes a picture of what that sets off as soon as `when` holds.
  void TakeDuring(const Form& form, std::string_view control, std::string_view name,
                  std::function<bool()> when) {
    moment_ = {.form = &form, .name = name, .when = std::move(when)};
    Click(form, control);
    if (moment_) throw RuntimeError(ErrorNumber::kInvalidCall, name);
  }

  Answer MsgBox(const MessageBox& box) override {
    return box.buttons == MessageButtons::kOk ? Answer::kOk : Answer::kYes;
  }
  void RunModal(Form& form) override { form.Close(UnloadMode::kCode); }

 protected:
  void ProcessFrontEvents(Milliseconds now) override {
    WxHost::ProcessFrontEvents(now);
    if (!moment_ || !moment_->when()) return;
    const Moment moment = *std::exchange(moment_, std::nullopt);
    Take(*moment.form, moment.name);
  }

 private:
  struct Moment {
    const Form* form;
    std::string_view name;
    std::function<bool()> when;
  };

  // Shows what has changed first.
  void WaitUntilPainted() {
    constexpr int kTurns = 15;
    constexpr int kTurn = 25;
    for (int i = 0; i < kTurns; ++i) {
      Sync();
      wxEventLoopBase::GetActive()->YieldFor(wxEVT_CATEGORY_ALL);
      wxMilliSleep(kTurn);
    }
  }

  std::optional<Moment> moment_;
};

void WalkStartups(frmMain& main) {
  for (size_t i = 0; i < startup::kWalked; ++i) main.engine().startups().Reload();
}

// The manager's other list, with an entry that the user has blocked.
void TakeStartups(PictureHost& host, frmMain& main) {
  StartupShield& startups = main.engine().startups();
  TreeView& tools = main.tools.tvwAdvancedTools;
  host.Act([&] {
    WalkStartups(main);
    startups.Remember({.name = "Sample Bar",
                       .path = "C:\\Program Files\\Sample Bar\\bar.exe",
                       .section = "Registry Local Machine Run"},
                      verdict::kBlocked);
    startups.Reload();
    tools.ClickByUser(tools.At(2));
  });
  host.Take(main, "startup");
  host.Act([&] { tools.ClickByUser(tools.At(1)); });
}

void TakePages(PictureHost& host, frmMain& main) {
  host.Take(main, "summary");
  constexpr std::string_view kPages[] = {"scan",   "defender", "options", "schedule",
                                         "update", "advanced", "news"};
  for (int tab = static_cast<int>(std::size(kPages)) - 1; tab >= 0; --tab) {
    host.Click(main, "imgMainTab(" + std::to_string(tab) + ")");
    // The first page shows the running scan.
    if (tab > 0) host.Take(main, kPages[tab]);
    if (kPages[tab] == "advanced") TakeStartups(host, main);
  }
}

// The first trace of the named threat.
TreeNodeRef TraceOf(const TreeView& tree, std::string_view threat) {
  for (const TreeNodeRef& root : tree.Roots()) {
    if (root->text == threat) return root->children.front();
  }
  throw RuntimeError(ErrorNumber::kInvalidCall, threat);
}

void TakeScanAndRemoval(PictureHost& host, frmMain& main) {
  TreeView& found = main.results.vbatvwResults;
  host.TakeDuring(main, "ImgStartScanMouseMove", "scan", [&] { return found.Count() > 12; });
  host.Act([&] { found.ClickByUser(found.Roots().front()); });
  host.Take(main, "results");

  // One trace goes to the safe list, all others are removed.
  host.Click(main, "chkSelectAllDetectedSpywares");
  host.Act([&] { found.CheckByUser(TraceOf(found, "Sample Mole"), true); });
  host.Click(main, "ImgAddToIgnoredListNormal");
  host.Click(main, "chkSelectAllDetectedSpywares");
  const RemovalPage& removal = main.removal;
  host.TakeDuring(main, "cmdRemoveSpywares", "removal", [&] {
    const bool names = removal.lblDeletingCaption.Caption().find("Sample") != std::string::npos;
    return names && removal.pbrRemoveSpyware.Value() > removal.pbrRemoveSpyware.Max() / 2;
  });
  host.Take(main, "removal-summary");
  host.Click(main, "cmdFinish");
}

// What some of the forms tell of.
void PrepareForms(Platform& platform, Application& application) {
  application.settings().Save(setting::kHomepage, "http://home.example/");
  RegCreateKeyValue(platform.registry(), hive::kCurrentUser,
                    "Software\\Microsoft\\Internet Explorer\\Main", "Start Page",
                    std::string("http://search.example/"));
  // The alert would come by itself from then on, over other windows.
  application.MainForm().timers.tmrPreventChangeHomePage.SetInterval(Milliseconds(0));
  application.MainForm().engine().browserSettings().Pending() = {
      .label = "Home Page",
      .newValue = "http://www.samplehijack.example/",
      .defaultValue = DefaultOf(BrowserSettingTable().front(), platform.machine()),
      .storedValue = "http://www.home.example/"};
  // So would this one, of an entry that is new since the first run.
  application.MainForm().timers.tmrStartup.SetInterval(Milliseconds(0));
  application.settings().Save(setting::kJustAfterInstallation, false);
  RegCreateKeyValue(platform.registry(), hive::kCurrentUser,
                    "Software\\Microsoft\\Windows\\CurrentVersion\\Run", "Sample Toolbar",
                    std::string("\"C:\\Program Files\\Sample Toolbar\\toolbar.exe\" /quiet"));
  application.MainForm().engine().startups().LoadJustAfterInstallation();
  WalkStartups(application.MainForm());
  application.forms().starUpAlert.Unload();
  application.forms().wizard.helpPage =
      GetPathWithSlash(platform.machine().ProgramFolder()) + "sd.html";
}

void TakeForms(PictureHost& host, Application& application) {
  for (const Forms::Entry& entry : application.forms().All()) {
    if (entry.name == application.MainForm().Name()) continue;
    Form* form = nullptr;
    host.Act([&] {
      form = &entry.touch();
      form->Show();
      if (auto* alert = dynamic_cast<frmSpywareFoundAlert*>(form)) {
        alert->Tell({.path = "C:\\Program Files\\Sample Watch\\samplewatch.exe",
                     .company = "Unlisted Example",
                     .hash = "0F343B0931126A20F133D67C2B018A3B",
                     .typeName = "Trojan",
                     .threatName = "Sample Watch"});
      }
    });
    host.Take(*form, entry.name);
    host.Act([&] { form->Close(UnloadMode::kCode); });
  }
}

void TakeAll() {
  // Where it is over no window, which would show what it says of itself.
  wxUIActionSimulator().MouseMove(0, 0);
  const std::unique_ptr<Platform> platform = OpenPlatform({});
  PictureHost host([&](const std::string& page) { return ReadWholeFile(platform->files(), page); });
  std::optional<Application> application;
  host.Act([&] {
    application.emplace(*platform, host, StartOptions{.showSplash = false, .runWizard = false});
    application->Main();
  });
  TakePages(host, application->MainForm());
  TakeScanAndRemoval(host, application->MainForm());
  PrepareForms(*platform, *application);
  TakeForms(host, *application);
}

class PictureApplication : public wxApp {
 public:
  bool OnInit() override {
    SetExitOnFrameDelete(false);
    CallAfter([this] {
      try {
        TakeAll();
      } catch (const RuntimeError& error) {
        std::cerr << "window-pictures: " << error.Description() << '\n';
        status_ = 1;
      }
      ExitMainLoop();
    });
    return true;
  }
  int OnRun() override {
    wxApp::OnRun();
    return status_;
  }

 private:
  int status_ = 0;
};

}  // namespace
}  // namespace quarnel

int main(int argc, char** argv) {
  wxApp::SetInstance(new quarnel::PictureApplication);
  return wxEntry(argc, argv);
}
