#pragma once

#include <gmock/gmock.h>

#include <map>

#include "core/paths.h"
#include "core/setting_keys.h"
#include "display/robot.h"
#include "support/program_fixture.h"
#include "ui/application.h"
#include "ui/wx/wx_host.h"

namespace quarnel {

// A scan takes as long with it as on a slow disk, so that there is time to act in.
class SlowHost : public WxHost {
 public:
  using WxHost::WxHost;
  bool slow = false;
  Milliseconds pause{0};  // more, for things of which there are few

 protected:
  void ProcessFrontEvents(Milliseconds now) override {
    // A system may sleep for no less than a millisecond.
    constexpr int kSteps = 5;
    if (slow && ++steps_ % kSteps == 0) wxMilliSleep(1);
    if (pause.count() > 0) wxMilliSleep(static_cast<unsigned long>(pause.count()));
    WxHost::ProcessFrontEvents(now);
  }

 private:
  int steps_ = 0;
};

// The program with its windows, on a machine with one find, and a robot to use it.
class DisplayTest : public ProgramTest {
 protected:
  static constexpr int kSignatures = 30000;

  DisplayTest() {
    // Enough that somebody can stop the scan by hand; the one with a find comes first.
    std::string lines(kPlantedLine);
    for (int i = 0; i < kSignatures; ++i) {
      const std::string number = std::to_string(i);
      lines += Join({"Any,Other ", number, ",1,31,None", number, ".txt,,7\n"}, "");
    }
    Install({.files = lines});
  }
  ~DisplayTest() override {
    application.reset();
    host.reset();
  }

  frmMain& Start() {
    host = std::make_unique<SlowHost>([this](const std::string& page) { return Read(page); });
    robot.onLate = [this] {
      host->slow = false;
      host->Act([this] { host->EndProcess(); });
    };
    host->Act([this] {
      application = std::make_unique<Application>(platform(), *host, kOptions);
      EXPECT_TRUE(application->Main());
    });
    frmMain& main = application->MainForm();
    robot.Click("the first tab", [this] { return Widget("imgMainTab(0)"); });
    EXPECT_TRUE(robot.Run(kPatience)) << robot.Waiting();
    return main;
  }

  FormWindow* WindowOf(const Form& form) { return host->WindowOf(form); }
  // The widget that shows a control, of the main window when no form is given.
  wxWindow* Widget(std::string_view control, const Form* form = nullptr) {
    FormWindow* window = WindowOf(form != nullptr ? *form : application->MainForm());
    const Binding* binding = window == nullptr ? nullptr : window->Find(control);
    return binding == nullptr ? nullptr : binding->Widget();
  }
  void Click(const std::string& control, const Form* form = nullptr) {
    robot.Click(control, [this, control, form] { return Widget(control, form); });
  }
  void Until(std::string what, std::function<bool()> when) {
    robot.Until(std::move(what), std::move(when));
  }
  void Run() { EXPECT_TRUE(robot.Run(kPatience)) << "waited for " << robot.Waiting(); }
  void Scan() {
    Click("ImgStartScanMouseMove");
    Until("the scan's end", [&] {
      return application->MainForm().scan.lblStatus.Caption() == "Scanning completed.";
    });
    Run();
  }
  // Lets the window come to rest.
  void Settle() {
    const wxLongLong start = wxGetUTCTimeMillis();
    Until("rest", [start] { return wxGetUTCTimeMillis() - start > 300; });
    Run();
    host->Sync();
  }

  // Each widget says what its control says.
  void ExpectInStep(Form& form) {
    host->Sync();
    FormWindow* window = WindowOf(form);
    ASSERT_NE(window, nullptr) << form.Name();
    EXPECT_EQ(window->Window()->GetTitle().utf8_string(), form.Caption());
    ExpectOwnLetters(*window);
    for (const auto& binding : window->Bindings()) {
      const Control& control = binding->control();
      const std::string_view type = control.Type();
      SCOPED_TRACE(form.Name() + "." + control.Name());
      if (type != "Panel" && !control.Name().starts_with("imgMainTab")) {
        EXPECT_EQ(binding->Widget()->IsShown(), control.Visible());
        EXPECT_EQ(binding->Widget()->IsThisEnabled(), control.Enabled());
      }
      if (type != "Panel" && type != "Image" && type != "Button") {
        EXPECT_EQ(binding->Shown(), control.ValueText());
      }
    }
  }

  // Each letter reaches one thing that shows, and each button has one.
  void ExpectOwnLetters(const FormWindow& window) {
    std::map<wxUniChar, std::string> reached;
    const auto reach = [&](const wxString& label, const std::string& what) {
      const int letter = label.find('&') == wxString::npos ? wxNOT_FOUND : label.Find('&') + 1;
      if (letter == wxNOT_FOUND) return false;
      const wxUniChar key = wxToupper(label[static_cast<size_t>(letter)]);
      EXPECT_TRUE(reached.try_emplace(key, what).second) << what << " and " << reached[key];
      return true;
    };
    if (const auto* frame = dynamic_cast<wxFrame*>(window.Window())) {
      const wxMenuBar* bar = frame->GetMenuBar();
      for (size_t i = 0; bar != nullptr && i < bar->GetMenuCount(); ++i) {
        EXPECT_TRUE(reach(bar->GetMenuLabel(i), "menu")) << bar->GetMenuLabel(i);
      }
    }
    for (const auto& binding : window.Bindings()) {
      if (binding->KeyCaption().empty() || !binding->Widget()->IsShownOnScreen()) continue;
      const bool keyed = reach(binding->Widget()->GetLabel(), binding->control().Name());
      const bool button = dynamic_cast<wxAnyButton*>(binding->Widget()) != nullptr;
      EXPECT_TRUE(keyed || !button) << binding->control().Name();
    }
  }

  // Shows one form after the other, to be looked at.
  void ForEachForm(const std::function<void(Form&)>& look) {
    for (const auto& entry : application->forms().All()) {
      SCOPED_TRACE(entry.name);
      Form* form = nullptr;
      host->Act([&] {
        form = &entry.touch();
        form->Show();
      });
      host->Sync();
      look(*form);
      if (form == &application->MainForm()) continue;
      host->Act([&] { form->Close(UnloadMode::kCode); });
    }
  }

  // The form of this name that is on the screen; null when there is none.
  const Form* Shown(std::string_view name) {
    for (const Form* form : host->LoadedForms()) {
      const FormWindow* window = WindowOf(*form);
      if (form->Name() == name && window != nullptr && window->Window()->IsShown()) return form;
    }
    return nullptr;
  }
  void ClickIn(const std::string& form, const std::string& control) {
    robot.Click(form + "." + control, [this, form, control]() -> wxWindow* {
      const Form* shown = Shown(form);
      return shown == nullptr ? nullptr : Widget(control, shown);
    });
  }

  static std::string Clipboard() {
    wxTextDataObject text;
    if (!wxTheClipboard->Open()) return {};
    wxTheClipboard->GetData(text);
    wxTheClipboard->Close();
    return text.GetText().utf8_string();
  }

  static constexpr int kPatience = 30;
  static constexpr StartOptions kOptions = {.showSplash = false, .runWizard = false};
  std::unique_ptr<SlowHost> host;
  std::unique_ptr<Application> application;
  Robot robot;
};

}  // namespace quarnel
