// The windows on a real display, driven by real mouse and keyboard events.

#include <gmock/gmock.h>

#include <map>

#include "core/paths.h"
#include "core/setting_keys.h"
#include "display/robot.h"
#include "recovery/restore_point.h"
#include "scan/folders.h"
#include "signatures/compiler.h"
#include "support/platform_fixture.h"
#include "ui/application.h"
#include "ui/wx/wx_host.h"

namespace quarnel {
namespace {

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

class DisplayTest : public PlatformTest {
 protected:
  static constexpr int kProgramFiles = 31;
  static constexpr int kSignatures = 30000;

  DisplayTest() {
    settings.SaveSetting("Registry Status", "ResetValue", "x");
    settings.ResetRegistrySettings();
    IgnoringErrors([&] { files().Delete(SafeListPath(machine())); });
    // Enough that somebody can stop the scan by hand; the one with a find comes first.
    std::string lines = "Any,Threat,1,31,Planted.txt,,7\n";
    for (int i = 0; i < kSignatures; ++i) {
      const std::string number = std::to_string(i);
      lines += "Any,Other " + number + ",1,31,None" + number + ".txt,,7\n";
    }
    for (const CompiledFile& file : CompileSet({.files = lines}).files) {
      WriteWholeFile(files(), DataFolder(machine()) + file.name, file.bytes);
    }
    for (const std::string_view name : {"QNLList.dll", "QNLCritProc.dll"}) {
      WriteWholeFile(files(), DataFolder(machine()) + std::string(name), "list\r\n");
    }
    WriteWholeFile(files(), planted, "x");
  }
  ~DisplayTest() override {
    application.reset();
    host.reset();
    IgnoringErrors([&] { files().Delete(planted); });
  }

  frmMain& Start() {
    host = std::make_unique<SlowHost>(
        [this](const std::string& page) { return ReadWholeFile(files(), page); });
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
  std::string planted = GetFolder(machine(), kProgramFiles).front() + "Planted.txt";
  Settings settings{registry(), "Quarnel"};
  std::unique_ptr<SlowHost> host;
  std::unique_ptr<Application> application;
  Robot robot;
};

TEST_F(DisplayTest, TabsAreClickedAndEachPageShowsItsControls) {
  frmMain& main = Start();
  ExpectInStep(main);
  struct Tab {
    int index;
    const Panel& page;
  };
  const Tab tabs[] = {
      {1, main.tabs.picHiJackRestore},
      {2, main.tabs.PicSecondTabConfiguration},
      {3, main.tabs.PicFifthTabSchedule},
      {4, main.tabs.PicSixthTabLiveUpdate},
      {5, main.tabs.picBHOLeftView},
      {6, main.tabs.picNewsAndReport},
      {0, main.tabs.picSpywareAdwareRightWindow},
  };
  for (const Tab& tab : tabs) {
    Click("imgMainTab(" + std::to_string(tab.index) + ")");
    Until("its page", [&] { return tab.page.Visible(); });
    Run();
    ExpectInStep(main);
  }
}

TEST_F(DisplayTest, EachFormOpensAndPlacesItsControls) {
  frmMain& main = Start();
  for (const auto& entry : application->forms().All()) {
    SCOPED_TRACE(entry.name);
    Form* form = nullptr;
    host->Act([&] {
      form = &entry.touch();
      form->Show();
    });
    host->Sync();
    const FormWindow* window = WindowOf(*form);
    ASSERT_NE(window, nullptr);
    ExpectInStep(*form);
    for (const auto& binding : window->Bindings()) {
      SCOPED_TRACE(binding->control().Name());
      if (binding->Widget()->AcceptsFocus()) {
        EXPECT_NE(binding->AccessibleName(), "");
      }
    }
    std::string nowhere;
    for (const Control* control : form->Controls()) {
      const std::string_view type = control->Type();
      if (type == "Timer" || type == "TrayIcon" || type == "Panel" || type == "MenuItem") continue;
      if (LayoutOf(form->Name()).form.empty() || window->Places(*control)) continue;
      if (!control->Name().starts_with("imgMainTabC")) nowhere += control->Name() + " ";
    }
    EXPECT_EQ(nowhere, "");
    if (form != &main) {
      host->Act([&] { form->Close(UnloadMode::kCode); });
    }
  }
}

TEST_F(DisplayTest, NewsAreReadFromTheMachineAndALinkIsHandedOn) {
  const std::string path = GetPathWithSlash(machine().ProgramFolder()) + "News.html";
  WriteWholeFile(files(), path, "<a href=\"http://localhost/news\">Read all the news here</a>");
  frmMain& main = Start();
  std::string followed;
  main.news.wbrNewsAndReport.LinkClick = [&](std::string_view address) { followed = address; };
  host->Act([&] { main.news.wbrNewsAndReport.Navigate(path); });
  host->Sync();
  auto* page = dynamic_cast<wxHtmlWindow*>(Widget("wbrNewsAndReport"));
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(page->ToText().Trim(), "Read all the news here");
  page->OnLinkClicked(wxHtmlLinkInfo("http://localhost/news"));
  EXPECT_EQ(followed, "http://localhost/news");
  host->Act([&] { main.news.wbrNewsAndReport.Navigate("http://localhost/report"); });
  host->Sync();
  EXPECT_THAT(page->ToText().utf8_string(), ::testing::HasSubstr("http://localhost/report"));
  EXPECT_THAT(page->ToText().utf8_string(), ::testing::HasSubstr("Read all the news here"));
  IgnoringErrors([&] { files().Delete(path); });
}

TEST_F(DisplayTest, ScanIsPausedAndStoppedByHand) {
  frmMain& main = Start();
  host->slow = true;
  Click("ImgStartScanMouseMove");
  Until("a find", [&] { return main.results.vbatvwResults.Count() > 1; });
  // The find is on the screen while the scan goes on.
  Until("the find on the screen", [&] {
    const Binding* tree = WindowOf(main)->Find("vbatvwResults");
    return tree->Shown() != "0" && ScanRuns(main.scan);
  });
  Click("imgPause");
  robot.AnswerBox("OK");
  Click("ImgStopScanMouseMove");
  robot.AnswerBox("Yes");
  Until("the scan's end", [&] { return main.scan.lblStatus.Caption() == "Scanning cancelled."; });
  Run();
  ExpectInStep(main);
  EXPECT_EQ(main.results.txtAdwareSpyware.Caption(), "1");
}

TEST_F(DisplayTest, TicksOfAThreatReachItsTraces) {
  frmMain& main = Start();
  Click("ImgStartScanMouseMove");
  Until("the scan's end", [&] { return main.scan.lblStatus.Caption() == "Scanning completed."; });
  Run();
  Settle();
  TreeView& tree = main.results.vbatvwResults;
  ASSERT_EQ(tree.Count(), 2U);
  ASSERT_TRUE(tree.At(1)->checked);
  auto* widget = dynamic_cast<wxDataViewCtrl*>(Widget("vbatvwResults"));
  ASSERT_NE(widget, nullptr);
  const auto find = [widget] { return widget; };
  const auto inTheRow = [&](int x) {
    return [&, x](wxWindow&) {
      const wxRect row =
          widget->GetItemRect(wxDataViewItem(tree.At(1).get()), widget->GetColumn(0));
      if (row.IsEmpty()) return wxDefaultPosition;
      return widget->ClientToScreen(row.GetTopLeft()) + widget->FromDIP(wxPoint(x, row.height / 2));
    };
  };
  // The box stands at the left of the text.
  robot.Click("the tick", find, inTheRow(10));
  Until("no tick", [&] { return !tree.At(1)->checked && !tree.At(2)->checked; });
  Run();
  ExpectInStep(main);

  // The same row's menu copies the results.
  host->SetClipboardText("nothing");
  robot.Click("the row", find, inTheRow(60), wxMOUSE_BTN_RIGHT);
  robot.ChooseFromMenu();
  robot.AnswerBox("OK");
  Until("the copy", [] { return Clipboard().find("Threat") != std::string::npos; });
  Run();
}

TEST_F(DisplayTest, RowsOfTheTrayMenuAreClicked) {
  frmMain& main = Start();
  host->Act([&] { main.trayIcon.RightClick(); });
  const frmMenuPopUp& menu = application->forms().menuPopUp.Touch();
  const std::string before = menu.lblMnuCookieSheild.Caption();
  ClickIn("frmMenuPopUp", "mnuCookieSheild");
  Until("the other state", [&] { return menu.lblMnuCookieSheild.Caption() != before; });
  Run();
  ExpectInStep(application->forms().menuPopUp.Touch());
  ClickIn("frmMenuPopUp", "MNUSchedule");
  Until("the schedule", [&] { return main.tabs.PicFifthTabSchedule.Visible(); });
  Run();
  EXPECT_EQ(Shown("frmMenuPopUp"), nullptr);
}

TEST_F(DisplayTest, WhatWasFoundIsRemovedAndRestored) {
  const std::string older =
      RestorePointFile(machine(), "Older_20200102030405", restore_point::kFiles);
  DeleteTree(files(), BackupFolder(machine()));
  CreateFolders(files(), BackupFolder(machine()));
  WriteWholeFile(files(), older, "");
  // A strict restore brings the file to its own drive, wherever the program lies.
  settings.Save(setting::kStrict, "1");
  frmMain& main = Start();
  Click("ImgStartScanMouseMove");
  Until("the scan's end", [&] { return main.scan.lblStatus.Caption() == "Scanning completed."; });
  Run();

  // Time to look at the progress.
  host->pause = Milliseconds(20);
  Click("cmdRemoveSpywares");
  Until("the removal's progress", [&] {
    const wxWindow* bar = Widget("pbrRemoveSpyware");
    return bar != nullptr && bar->IsShownOnScreen();
  });
  ClickIn("frmReBootMachine", "cmdClose");
  Until("the summary", [&] { return main.removal.picRemoveSummary.Visible(); });
  Run();
  host->pause = {};
  ExpectInStep(main);
  EXPECT_FALSE(files().Stat(planted));

  Click("cmdFinish");
  Click("cmdRestore");
  const auto list = [&]() -> wxListCtrl* {
    const Form* form = Shown("frmRestore");
    return form == nullptr ? nullptr : dynamic_cast<wxListCtrl*>(Widget("lvwBackups", form));
  };
  // A cell, at a part of its width: two clicks at one place may be a double click.
  constexpr int kHead = -1;
  const auto click = [&](int row, int column, int share) {
    robot.Click("the restore points", list, [&, row, column, share](wxWindow& widget) {
      wxRect cell;
      list()->GetSubItemRect(std::max(row, 0), column, cell);
      if (cell.IsEmpty()) return wxDefaultPosition;
      const int y = row == kHead ? cell.y / 2 : cell.y + cell.height / 2;
      return widget.ClientToScreen(wxPoint(cell.x + cell.width / share, y));
    });
  };
  std::vector<std::string> first;
  const auto expectOrder = [&](int column, bool ascending) {
    robot.Then(
        "their order",
        [&, column, ascending] {
          const wxListCtrl* shown = list();
          return shown != nullptr && shown->GetSortIndicator() == column &&
                 shown->IsAscendingSortIndicator() == ascending;
        },
        [&] { first.push_back(list()->GetItemText(0).utf8_string()); });
  };
  click(kHead, 0, 2);
  expectOrder(0, true);
  click(kHead, 0, 3);
  expectOrder(0, false);
  click(kHead, 1, 2);
  expectOrder(1, true);
  click(1, 0, 2);
  Until("the chosen one", [&] {
    const auto* rows = dynamic_cast<const ListView*>(Shown("frmRestore")->Find("lvwBackups"));
    return rows->SelectedRow() && !rows->At(*rows->SelectedRow()).text.starts_with("Older");
  });
  ClickIn("frmRestore", "cmdOK");
  robot.AnswerBox("Yes");
  robot.AnswerBox("OK");
  Run();
  ASSERT_EQ(first.size(), 3U);
  EXPECT_THAT(first.at(0), ::testing::Not(::testing::StartsWith("Older")));
  EXPECT_THAT(first.at(1), ::testing::StartsWith("Older"));
  EXPECT_THAT(first.at(2), ::testing::StartsWith("Older"));
  EXPECT_TRUE(files().Stat(planted));
  EXPECT_EQ(Shown("frmRestore"), nullptr);
}

TEST_F(DisplayTest, MenuSelectsAPageAndClosingAsks) {
  frmMain& main = Start();
  const auto window = [this, &main]() -> wxWindow* { return WindowOf(main)->Window(); };
  robot.Press("the menu", window, 'O', wxMOD_ALT);
  robot.ChooseFromMenu();
  Until("the options", [&] { return main.tabs.PicSecondTabConfiguration.Visible(); });
  Run();
  const auto close = [&](const std::string& answer) {
    robot.Press("close", window, WXK_F4, wxMOD_ALT);
    ClickIn("frmClose", answer);
  };
  close("cmdCancel");
  Until("the window's stay", [&] { return Shown("frmClose") == nullptr && main.Visible(); });
  Run();
  close("cmdYes");
  // The end of the program ends its message loops.
  Run();
  EXPECT_TRUE(host->HasEnded());
}

}  // namespace
}  // namespace quarnel

int main(int argc, char** argv) {
  ::testing::InitGoogleMock(&argc, argv);
  wxApp::SetInstance(new wxApp);
  int own = 1;
  if (!wxEntryStart(own, argv)) {
    // Without a display nothing can be shown.
    constexpr int kSkipped = 77;
    return kSkipped;
  }
  wxTheApp->SetExitOnFrameDelete(false);
  wxIdleEvent::SetMode(wxIDLE_PROCESS_SPECIFIED);
  wxUpdateUIEvent::SetMode(wxUPDATE_UI_PROCESS_SPECIFIED);
  wxInitAllImageHandlers();
  const int result = RUN_ALL_TESTS();
  wxEntryCleanup();
  return result;
}
