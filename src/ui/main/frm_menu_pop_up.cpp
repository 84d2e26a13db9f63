#include "ui/main/frm_menu_pop_up.h"

#include <string>

#include "base/text.h"
#include "core/messages.h"
#include "ui/alerts/slide_in.h"
#include "ui/main/maker_pages.h"

namespace quarnel {
namespace {

constexpr ScreenArea kDesign{.width = 3300, .height = 4600};
constexpr int kStepUp = 200;

enum Picture { kOff = 1, kOn = 2 };

}  // namespace

frmMenuPopUp::frmMenuPopUp(const Services& services, Pages& pages, Engine& engine,
                           MainWindow& window)
    : Form(services.host, "frmMenuPopUp"),
      s_(services),
      pages_(pages),
      engine_(engine),
      window_(window),
      rows_{&mnuMaxmimaize,   &mnuScanNow,      &MNUSchedule,     &mnuOptions,
            &mnuCookieSheild, &mnuRunAtStartup, &mnuMemorySheild, &mnuHelp,
            &mnuAbout,        &mnuReferAFriend, &mnuClose},
      cookies_{setting::kTrayCookies, setting::kTrayCookiesTurned, PicMnuCookieSheild,
               lblMnuCookieSheild},
      runAtStartup_{setting::kTrayRunAtStartup, setting::kTrayRunAtStartupTurned,
                    PicMenuRunAtStartUp, lblMenuRunAtStartUp},
      memory_{setting::kTrayMemorySheild, setting::kTrayMemorySheildTurned, PicMenuMemorySheild,
              lblMenuMemorySheild} {
  SetBorder(BorderStyle::kNone);
  SetShowInTaskbar(false);
  SetPlace(kDesign);
  WireRows();
  WireTimers();
}

void frmMenuPopUp::Wire(Clickable& control, std::string_view label, std::function<void()> handler) {
  control.Click = [this, label, handler = std::move(handler)] {
    Reporting(s_.log, std::string(label) + "_Click of frmMenuPopUp", handler);
  };
}

void frmMenuPopUp::WireRows() {
  for (MenuItem* row : rows_) row->MouseMove = [this, row] { Highlight(row); };
  imgMenuPopupAbove.MouseMove = [this] { Highlight(nullptr); };
  imgMenuPopupBelow.MouseMove = [this] { Highlight(nullptr); };

  Wire(mnuMaxmimaize, "mnuMaxmimaize", [this] {
    ShowMainWindow();
    Done();
  });
  Wire(mnuScanNow, "mnuScanNow", [this] { mnuScanNow_Click(); });
  Wire(MNUSchedule, "MNUSchedule", [this] { ShowTab(Tab::kSchedule); });
  Wire(mnuOptions, "mnuOptions", [this] { ShowTab(Tab::kConfiguration); });
  Wire(mnuCookieSheild, "mnuCookieSheild", [this] { TurnOver(cookies_); });
  Wire(mnuRunAtStartup, "mnuRunAtStartup", [this] { mnuRunAtStartup_Click(); });
  Wire(mnuMemorySheild, "mnuMemorySheild", [this] { mnuMemorySheild_Click(); });
  const auto opens = [this](MenuItem& row, std::string_view label, std::string_view page) {
    Wire(row, label, [this, page] {
      Done();
      OpenMakerPage(s_, page);
    });
  };
  opens(mnuHelp, "mnuHelp", maker_page::kQuestions);
  opens(mnuAbout, "mnuAbout", maker_page::kAbout);
  opens(mnuReferAFriend, "mnuReferAFriend", maker_page::kReferAFriend);
  Wire(mnuClose, "mnuClose", [this] { mnuClose_Click(); });
  Wire(lblMenuClose, "lblMenuClose", [this] { Done(); });
}

void frmMenuPopUp::WireTimers() {
  const auto wire = [this](Timer& timer, std::string_view label, auto work) {
    timer.Tick = [this, label, work] { Reporting(s_.log, label, work); };
  };
  wire(tmrMenuPopup, "tmrMenuPopup_Timer of frmMenuPopUp", [this] { tmrMenuPopup_Timer(); });
  wire(TmrEnablePopDown, "TmrEnablePopDown_Timer of frmMenuPopUp", [this] {
    TmrEnablePopDown.SetEnabled(false);
    tmrPopDown.SetEnabled(true);
  });
  wire(tmrPopDown, "tmrPopDown_Timer of frmMenuPopUp", [this] { tmrPopDown_Timer(); });
}

void frmMenuPopUp::Form_Load() {
  Reporting(s_.log, "Form_Load of frmMenuPopUp", [&] {
    SetCaption(s_.settings.ApplicationName());
    tmrPopDown.SetEnabled(false);
    TmrEnablePopDown.SetEnabled(false);
    const bool scans = ScanRuns(pages_.scan) && pages_.scan.ImgStopScanMouseMove.Visible();
    mnuScanNow.SetEnabled(!scans && !DownloadRuns(pages_.update));
    for (const Toggle* toggle : {&memory_, &runAtStartup_, &cookies_}) Paint(*toggle);
    PlaceAndShow();
  });
}

void frmMenuPopUp::PlaceAndShow() {
  ScreenArea place = Place();
  const SlidePlan plan = MenuPlan(host().Screen(), place.width, place.height);
  place.left = plan.left;
  place.top = plan.top;
  mPopupTarget_ = plan.target;
  SetPlace(place);
  Show();
  tmrMenuPopup.SetEnabled(true);
  SetTopMostWindow(*this, true);
}

void frmMenuPopUp::tmrMenuPopup_Timer() {
  Show();
  if (!SlideArrived(Place().top, mPopupTarget_)) return MoveTop(*this, -kStepUp);
  tmrMenuPopup.SetEnabled(false);
  TmrEnablePopDown.SetEnabled(true);
}

// The mouse over the window holds it; the timer goes on.
void frmMenuPopUp::tmrPopDown_Timer() {
  Show();
  if (MouseOver(host().Screen(), Place())) return;
  MoveTop(*this, kSlideDownStep);
  if (!SlidDown(Place().top)) return;
  tmrPopDown.SetEnabled(false);
  Done();
}

void frmMenuPopUp::Highlight(const MenuItem* row) {
  for (MenuItem* each : rows_) each->SetHighlighted(each == row);
}

void frmMenuPopUp::Paint(const Toggle& toggle) {
  const bool on = s_.settings.Get(toggle.shown);
  toggle.picture.SetPicture(on ? kOn : kOff);
  toggle.label.SetCaption(on ? "on" : "off");
}

bool frmMenuPopUp::TurnOver(const Toggle& toggle) {
  const bool on = !s_.settings.Get(toggle.turned);
  s_.settings.Save(toggle.turned, on);
  Paint(toggle);
  return on;
}

void frmMenuPopUp::ShowMainWindow() {
  window_.RestoreFromTray();
  mnuMaxmimaize.SetEnabled(false);
}

void frmMenuPopUp::mnuScanNow_Click() {
  ShowMainWindow();
  Done();
  engine_.ForgetScheduledScan();
  engine_.StartScan();
}

void frmMenuPopUp::ShowTab(Tab tab) {
  if (ScanRuns(pages_.scan) && !engine_.scans().Interrupt()) return;
  window_.RestoreFromTray();
  window_.OpenTab(tab);
  Done();
}

void frmMenuPopUp::mnuRunAtStartup_Click() {
  WriteRunValue(s_.platform.registry(), s_.platform.machine(), TurnOver(runAtStartup_));
}

void frmMenuPopUp::mnuMemorySheild_Click() {
  const bool on = TurnOver(memory_);
  s_.settings.Save(setting::kMemorySheildOff, !on);
  pages_.timers.tmrMemoryInspected.SetEnabled(on);
}

void frmMenuPopUp::mnuClose_Click() {
  window_.BringToFront();
  if (!mnuScanNow.Enabled() && !engine_.scans().Interrupt()) return;
  if (Messages(s_.host, s_.settings).Ask("Are you sure you want to close this application?")) {
    return window_.EndProgram();
  }
  window_.RestInTray();
  pages_.timers.tmrMemoryInspected.SetEnabled(s_.settings.Get(setting::kTrayMemorySheild));
  Done();
}

}  // namespace quarnel
