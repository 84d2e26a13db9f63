// The tabs of the main window: which page shows, what opening it does, and the questions before.

#include "ui/frm_main.h"
#include "ui/maker_pages.h"

namespace quarnel {

void frmMain::ChangePicOnTabClicked(const ShownPages& shown) {
  tabs.picSpywareAdwareRightWindow.SetVisible(shown.scan);
  tabs.PicSecondTabConfiguration.SetVisible(shown.configuration);
  tabs.picHiJackRestore.SetVisible(shown.hijack);
  tabs.PicFifthTabSchedule.SetVisible(shown.schedule);
  tabs.PicSixthTabLiveUpdate.SetVisible(shown.liveUpdate);
  tabs.picBHOLeftView.SetVisible(shown.bho);
  update.cmdFTPDownloadCancel.SetEnabled(!(update.cmdDownload.Enabled() && shown.liveUpdate));
  update.cmdFTPDownloadCancel.SetVisible(update.cmdFTPDownloadCancel.Enabled());
}

bool frmMain::InterruptScan() {
  const Answer answer = s_.host.MsgBox(
      {.text = "Scanning process is in progress. Clicking [Yes] will interrupt the scanning "
               "process. Do you want to cancel the scanning?",
       .title = s_.settings.ApplicationName(),
       .icon = MessageIcon::kQuestion,
       .buttons = MessageButtons::kYesNo});
  if (answer != Answer::kYes) return false;
  StopScanUnasked();
  return true;
}

void frmMain::StopScanUnasked() {
  SetTag(kDoNotShow);
  controller_.ImgStopScanMouseMove_Click();
}

// The question stays unasked on every path of the program, since the stop just before has left the
// form's mark; the results page closes all the same.
bool frmMain::AskToCloseResults() {
  if (!results.cmdDone.Tag().empty() && !results.cmdRemoveSpywares.Tag().empty()) return true;
  if (Tag() != kDoNotShow &&
      s_.host.MsgBox({.text = "Scanning process has completed. Clicking [Yes] will close the "
                              "scanned results. Do you want to proceed?",
                      .title = s_.settings.ApplicationName(),
                      .icon = MessageIcon::kQuestion,
                      .buttons = MessageButtons::kYesNo}) != Answer::kYes) {
    return false;
  }
  results.picSearchResultsLeftWindow.SetVisible(false);
  results.picResultsRightWindow.SetVisible(true);
  results.imgNext1.SetVisible(false);
  StopScanUnasked();
  return true;
}

void frmMain::imgMainTab_Click(int index) {
  Reporting(s_.log, "imgMainTab_Click in frmMain", [&] {
    const bool again = index == 0 && mCurrentTab_ == 0 && !ScanRuns(scan);
    if (ScanRuns(scan) && !InterruptScan()) return Form_Activate();
    results.imgNext1.SetVisible(false);
    StopScanUnasked();
    if (!AskToCloseResults()) return Form_Activate();
    SelectTab(index);
    // The way back from results that nobody wants to deal with.
    if (again) SwitchSummary(true);
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
  results.picResultsRightWindow.SetVisible(false);
  results.cmdRemoveSpywares.SetVisible(true);
  results.imgNext0.SetEnabled(false);
  results.imgNext1.SetVisible(false);
  for (Control* control : std::initializer_list<Control*>{&results.cmdCheckUncheckAll,
                                                          &results.ImgAddToIgnoredListNormal}) {
    control->SetVisible(true);
    control->SetEnabled(true);
  }
}

void frmMain::SelectTab(int index) {
  MarkTab(index);
  switch (index) {
    case 0:
      ChangePicOnTabClicked({.scan = true});
      if (results.imgNext0.Tag() == kResultMode) ShowResultMode();
      break;
    case 1:
      cmdDone_Click();
      ChangePicOnTabClicked({.hijack = true});
      break;
    case 2:
      ChangePicOnTabClicked({.configuration = true});
      break;
    case 3:
      ChangePicOnTabClicked({.schedule = true});
      scheduler_.OpenPage();
      break;
    case 4:
      ChangePicOnTabClicked({.liveUpdate = true});
      break;
    case 5:
      ChangePicOnTabClicked({.bho = true});
      tools.Open();
      break;
    case 6:
      ChangePicOnTabClicked({});
      news.wbrNewsAndReport.Navigate(MakerPage(maker_page::kReport));
      break;
    default:
      break;
  }
}

}  // namespace quarnel
