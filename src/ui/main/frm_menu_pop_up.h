#pragma once

#include <array>
#include <functional>
#include <span>
#include <string_view>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"
#include "core/main_window.h"
#include "core/services.h"
#include "core/setting_keys.h"
#include "engine/engine.h"

namespace quarnel {

// The menu of the tray icon: a window that slides up from the mouse, stays ten seconds unless the
// mouse is over it, and slides down again. A click on a row ends it.
class frmMenuPopUp : public Form {
 public:
  frmMenuPopUp(const Services& services, Pages& pages, Engine& engine, MainWindow& window);

  MenuItem mnuMaxmimaize{*this, "mnuMaxmimaize", "&Open"};
  MenuItem mnuScanNow{*this, "mnuScanNow", "&Scan Now"};
  MenuItem MNUSchedule{*this, "MNUSchedule", "Sche&dule"};
  MenuItem mnuOptions{*this, "mnuOptions", "O&ptions"};
  MenuItem mnuCookieSheild{*this, "mnuCookieSheild", "&Cookie Shield"};
  MenuItem mnuRunAtStartup{*this, "mnuRunAtStartup", "&Run at Startup"};
  MenuItem mnuMemorySheild{*this, "mnuMemorySheild", "&Memory Shield"};
  MenuItem mnuHelp{*this, "mnuHelp", "&Help"};
  MenuItem mnuAbout{*this, "mnuAbout", "&About"};
  MenuItem mnuReferAFriend{*this, "mnuReferAFriend", "Refer a &Friend"};
  MenuItem mnuClose{*this, "mnuClose", "C&lose"};
  Label lblMenuClose{*this, "lblMenuClose", "x"};

  // Picture 2 means on and 1 off.
  Image PicMnuCookieSheild{*this, "PicMnuCookieSheild"};
  Image PicMenuRunAtStartUp{*this, "PicMenuRunAtStartUp"};
  Image PicMenuMemorySheild{*this, "PicMenuMemorySheild"};
  Label lblMnuCookieSheild{*this, "lblMnuCookieSheild"};
  Label lblMenuRunAtStartUp{*this, "lblMenuRunAtStartUp"};
  Label lblMenuMemorySheild{*this, "lblMenuMemorySheild"};

  // The edges of the block of rows: the mouse leaves the rows over them.
  Image imgMenuPopupAbove{*this, "imgMenuPopupAbove"};
  Image imgMenuPopupBelow{*this, "imgMenuPopupBelow"};

  Timer tmrMenuPopup{*this, "tmrMenuPopup", Milliseconds(1), false};
  Timer TmrEnablePopDown{*this, "TmrEnablePopDown", Milliseconds(10000), false};
  Timer tmrPopDown{*this, "tmrPopDown", Milliseconds(2), false};

  // The rows from top to bottom.
  std::span<MenuItem* const> Rows() const { return rows_; }

 protected:
  void Form_Load() override;

 private:
  // A row that turns a setting over.
  struct Toggle {
    SettingKey<setting::TrueFalse> shown;
    SettingKey<setting::TrueFalse> turned;
    Image& picture;
    Label& label;
  };

  void Wire(Clickable& control, std::string_view label, std::function<void()> handler);
  void WireRows();
  void WireTimers();

  void PlaceAndShow();
  void Highlight(const MenuItem* row);
  void Paint(const Toggle& toggle);
  // Turns the setting over and paints its row anew; whether it is on now.
  bool TurnOver(const Toggle& toggle);
  void ShowTab(Tab tab);
  void ShowMainWindow();
  void Done() { Close(UnloadMode::kCode); }

  void mnuScanNow_Click();
  void mnuRunAtStartup_Click();
  void mnuMemorySheild_Click();
  void mnuClose_Click();
  void tmrMenuPopup_Timer();
  void tmrPopDown_Timer();

  Services s_;
  Pages& pages_;
  Engine& engine_;
  MainWindow& window_;
  std::array<MenuItem*, 11> rows_;
  Toggle cookies_;
  Toggle runAtStartup_;
  Toggle memory_;
  int mPopupTarget_ = 0;
};

}  // namespace quarnel
