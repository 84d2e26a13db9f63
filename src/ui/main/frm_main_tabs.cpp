// The tabs of the main window: which page shows, what opening it does, and the questions before.

#include "core/messages.h"
#include "ui/main/frm_main.h"

namespace quarnel {

void frmMain::ShowPage(Tab tab) {
  tabs.picSpywareAdwareRightWindow.SetVisible(tab == Tab::kScan);
  tabs.PicSecondTabConfiguration.SetVisible(tab == Tab::kConfiguration);
  tabs.picHiJackRestore.SetVisible(tab == Tab::kDefender);
  tabs.PicFifthTabSchedule.SetVisible(tab == Tab::kSchedule);
  tabs.PicSixthTabLiveUpdate.SetVisible(tab == Tab::kLiveUpdate);
  tabs.picBHOLeftView.SetVisible(tab == Tab::kTools);
  engine_.update().PageChanged(tab == Tab::kLiveUpdate);
}

void frmMain::SelectPage(Tab tab) {
  MarkTab(static_cast<int>(tab));
  ShowPage(tab);
}

// The question stays unasked on every path of the program, since the stop just before has left the
// form's mark; the results page closes all the same.
bool frmMain::AskToCloseResults() {
  if (!results.cmdDone.Tag().empty() && !results.cmdRemoveSpywares.Tag().empty()) return true;
  if (Tag() != kDoNotShow &&
      !Messages(s_.host, s_.settings)
           .Ask("Scanning process has completed. Clicking [Yes] will close the scanned results. Do "
                "you want to proceed?")) {
    return false;
  }
  results.facts.leftPane = results.facts.back = false;
  results.facts.rightPane = true;
  quarnel::Show(results);
  engine_.scans().StopUnasked();
  return true;
}

void frmMain::imgMainTab_Click(int index) {
  Reporting(s_.log, "imgMainTab_Click in frmMain", [&] {
    const bool again = index == 0 && mCurrentTab_ == 0 && !ScanRuns(scan);
    if (ScanRuns(scan) && !engine_.scans().Interrupt()) return Form_Activate();
    results.facts.back = false;
    quarnel::Show(results);
    engine_.scans().StopUnasked();
    if (!AskToCloseResults()) return Form_Activate();
    SelectTab(index);
    // The way back from results that nobody wants to deal with.
    if (!again) return;
    RefreshSummary();
    engine_.scans().SwitchSummary(true);
  });
}

void frmMain::MarkTab(int index) {
  mCurrentTab_ = index;
  for (size_t i = 0; i < TabStrip::kCount; ++i) {
    const bool selected = static_cast<int>(i) == index;
    tabs.imgMainTabC[i]->SetVisible(selected);
    tabs.imgMainTab[i]->SetVisible(!selected);
  }
  tabs.picLeft.SetPicture(index + 1);
  tabs.picSpywareAdwareLeftWindow.SetVisible(index == 0);
  tabs.picNewsAndReport.SetVisible(index == 6);
}

// The stop and the Done handler that come before every change of tab have taken the mark away, so
// no path of the program leads here.
void frmMain::ShowResultMode() {
  results.facts.rightPane = results.facts.back = false;
  results.facts.removable = results.facts.exemptable = true;
  quarnel::Show(results);
  results.imgNext0.SetEnabled(false);
  results.cmdCheckUncheckAll.SetEnabled(true);
  results.ImgAddToIgnoredListNormal.SetEnabled(true);
}

// An index that is no tab marks none and shows no other page.
void frmMain::SelectTab(int index) {
  MarkTab(index);
  if (index < 0 || index >= static_cast<int>(TabStrip::kCount)) return;
  const Tab tab = static_cast<Tab>(index);
  if (tab == Tab::kDefender) engine_.scans().cmdDone_Click();
  ShowPage(tab);
  if (tab == Tab::kScan && results.imgNext0.Tag() == kResultMode) ShowResultMode();
  if (tab == Tab::kSchedule) engine_.scheduler().OpenPage();
  if (tab == Tab::kTools) engine_.tools().Open();
  if (tab == Tab::kNews) newsLogic_.ShowReportPage();
}

}  // namespace quarnel
