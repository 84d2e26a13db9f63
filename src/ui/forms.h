#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "controls/form.h"
#include "core/services.h"
#include "ui/alerts/frm_bhr.h"
#include "ui/alerts/frm_home_page_changed_alert.h"
#include "ui/alerts/frm_spyware_found_alert.h"
#include "ui/alerts/frm_star_up_alert.h"
#include "ui/dialogs/frm_close.h"
#include "ui/dialogs/frm_close_ie.h"
#include "ui/dialogs/frm_de_immunize.h"
#include "ui/dialogs/frm_immunize.h"
#include "ui/dialogs/frm_ingnored_processes.h"
#include "ui/dialogs/frm_ingnored_spywares.h"
#include "ui/dialogs/frm_internet_connection.h"
#include "ui/dialogs/frm_reboot_machine.h"
#include "ui/dialogs/frm_restore.h"
#include "ui/dialogs/frm_splash.h"
#include "ui/dialogs/frm_spyware_definitions.h"
#include "ui/main/frm_main.h"
#include "ui/main/frm_menu_pop_up.h"
#include "ui/wizard/frm_approve_all_startup.h"
#include "ui/wizard/frm_wizard1.h"
#include "ui/wizard/frm_wizard2.h"
#include "ui/wizard/frm_wizard3.h"
#include "ui/wizard/frm_wizard4.h"
#include "ui/wizard/frm_wizard7.h"

namespace quarnel {

// Shows a form whose load may already end it, and which asks for itself again while it works: the
// second showing is ignored.
template <typename FormType>
void ShowModalOnce(FormSlot<FormType>& slot) {
  if (slot.IsLoaded()) return;
  FormType& form = slot.Touch();
  if (form.IsLoaded()) form.ShowModal();
}

// All forms of the program. Each stands in a slot, which makes it when it is first touched and anew
// after it was unloaded; the main window lives as long as this.
class Forms {
 public:
  Forms(const Services& services, StartOptions options);
  ~Forms();
  Forms(const Forms&) = delete;
  Forms& operator=(const Forms&) = delete;

  FormSlot<frmSplash> splash;
  FormSlot<frmClose> close;
  FormSlot<frmCloseIE> closeIE;
  FormSlot<frmReBootMachine> reBootMachine;
  FormSlot<frmIngnoredSpywares> ingnoredSpywares;
  FormSlot<frmIngnoredProcesses> ingnoredProcesses;
  FormSlot<frmRestore> restore;
  FormSlot<frmImmunize> immunize;
  FormSlot<frmDeImmunize> deImmunize;
  FormSlot<frmMenuPopUp> menuPopUp;
  FormSlot<frmBHR> bhr;
  FormSlot<frmStarUpAlert> starUpAlert;
  FormSlot<frmWizard1> wizard1;
  FormSlot<frmWizard2> wizard2;
  FormSlot<frmWizard3> wizard3;
  FormSlot<frmWizard7> wizard7;
  FormSlot<frmWizard4> wizard4;
  FormSlot<frmSpywareDefinitions> spywareDefinitions;
  FormSlot<frmInternetConnection> internetConnection;
  FormSlot<frmSpywareFoundAlert> spywareFoundAlert;
  // No path of the program opens these.
  FormSlot<frmApproveAllStartup> approveAllStartup;
  FormSlot<frmHomePageChangedAlert> homePageChangedAlert;

  // What the wizard's pages leave behind.
  WizardState wizard;

  frmMain& main() { return *main_; }

  struct Entry {
    std::string_view name;
    // The loaded form: it is made and loaded when it is not.
    std::function<Form&()> touch;
  };
  // Every form, also those that no path of the program opens.
  std::span<const Entry> All() const { return all_; }

 private:
  template <typename FormType>
  void List(std::string_view name, FormSlot<FormType>& slot) {
    all_.push_back({name, [&slot]() -> Form& { return slot.Touch(); }});
  }

  // The slot's factory of a page of the wizard.
  template <typename PageType>
  typename FormSlot<PageType>::Factory Page(const Services& services);

  std::unique_ptr<frmMain> main_;
  std::vector<Entry> all_;
};

}  // namespace quarnel
