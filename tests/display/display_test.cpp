// The windows on a real display, driven by real mouse and keyboard events.

#include "display/display_fixture.h"
#include "recovery/restore_point.h"

namespace quarnel {
namespace {

TEST_F(DisplayTest, TabsAreClickedAndEachPageShowsItsControls) {
  frmMain& main = Start();
  ExpectInStep(main);
  const Panel* const pages[] = {&main.tabs.picSpywareAdwareRightWindow,
                                &main.tabs.picHiJackRestore,
                                &main.tabs.PicSecondTabConfiguration,
                                &main.tabs.PicFifthTabSchedule,
                                &main.tabs.PicSixthTabLiveUpdate,
                                &main.tabs.picBHOLeftView,
                                &main.tabs.picNewsAndReport};
  for (const size_t tab : {1U, 2U, 3U, 4U, 5U, 6U, 0U}) {
    Click("imgMainTab(" + std::to_string(tab) + ")");
    Until("its page alone", [&] {
      return std::all_of(std::begin(pages), std::end(pages), [&](const Panel* page) {
        return page->Visible() == (page == pages[tab]);
      });
    });
    Run();
    EXPECT_TRUE(main.tabs.imgMainTabC[tab]->Visible());
    ExpectInStep(main);
  }
}

TEST_F(DisplayTest, EachFormOpensAndPlacesItsControls) {
  Start();
  ForEachForm([this](Form& form) {
    const FormWindow* window = WindowOf(form);
    ASSERT_NE(window, nullptr);
    ExpectInStep(form);
    for (const auto& binding : window->Bindings()) {
      SCOPED_TRACE(binding->control().Name());
      if (binding->Widget()->AcceptsFocus()) {
        EXPECT_NE(binding->AccessibleName(), "");
      }
    }
    std::string nowhere;
    for (const Control* control : form.Controls()) {
      const std::string_view type = control->Type();
      if (type == "Timer" || type == "TrayIcon" || type == "Panel" || type == "MenuItem") continue;
      if (LayoutOf(form.Name()).form.empty() || window->Places(*control)) continue;
      if (!control->Name().starts_with("imgMainTabC")) nowhere += control->Name() + " ";
    }
    EXPECT_EQ(nowhere, "");
  });
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
  Scan();
  Settle();
  TreeView& tree = main.results.vbatvwResults;
  ASSERT_EQ(tree.Count(), 2U);
  ASSERT_TRUE(tree.At(1)->checked);
  auto* widget = dynamic_cast<wxDataViewCtrl*>(Widget("vbatvwResults"));
  ASSERT_NE(widget, nullptr);
  const auto find = [widget] { return widget; };
  const auto inTheRow = [&](unsigned column) {
    return [&, column](wxWindow&) {
      const wxRect cell =
          widget->GetItemRect(wxDataViewItem(tree.At(1).get()), widget->GetColumn(column));
      if (cell.IsEmpty()) return wxDefaultPosition;
      return widget->ClientToScreen(wxPoint(cell.x + cell.width / 2, cell.y + cell.height / 2));
    };
  };
  robot.Click("the tick", find, inTheRow(0));
  Until("no tick", [&] { return !tree.At(1)->checked && !tree.At(2)->checked; });
  Run();
  ExpectInStep(main);

  // The same row's menu copies the results.
  host->SetClipboardText("nothing");
  robot.Click("the row", find, inTheRow(1), wxMOUSE_BTN_RIGHT);
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
  settings.Save(setting::kStrict, 1);
  frmMain& main = Start();
  Scan();

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
  const auto list = [&]() -> wxDataViewCtrl* {
    const Form* form = Shown("frmRestore");
    return form == nullptr ? nullptr : dynamic_cast<wxDataViewCtrl*>(Widget("lvwBackups", form));
  };
  const auto item = [&](int row) {
    const auto* rows = dynamic_cast<wxDataViewVirtualListModel*>(list()->GetModel());
    return rows->GetItem(static_cast<unsigned>(row));
  };
  // A cell, at a part of its width: two clicks at one place may be a double click.
  constexpr int kHead = -1;
  const auto click = [&](int row, int column, int share) {
    robot.Click("the restore points", list, [&, row, column, share](wxWindow& widget) {
      const wxRect cell = list()->GetItemRect(item(std::max(row, 0)),
                                              list()->GetColumn(static_cast<unsigned>(column)));
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
          const wxDataViewColumn* shown =
              list() == nullptr ? nullptr : list()->GetColumn(static_cast<unsigned>(column));
          return shown != nullptr && shown->IsSortKey() &&
                 shown->IsSortOrderAscending() == ascending;
        },
        [&] {
          wxVariant text;
          list()->GetModel()->GetValue(text, item(0), 0);
          first.push_back(text.GetString().utf8_string());
        });
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
