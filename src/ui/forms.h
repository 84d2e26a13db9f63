#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "controls/form.h"
#include "ui/frm_close.h"
#include "ui/frm_close_ie.h"
#include "ui/frm_ingnored_processes.h"
#include "ui/frm_ingnored_spywares.h"
#include "ui/frm_main.h"
#include "ui/frm_reboot_machine.h"
#include "ui/frm_restore.h"
#include "ui/frm_splash.h"
#include "ui/services.h"

namespace quarnel {

// All forms of the program. Each stands in a slot, which makes it when it is first touched and anew
// after it was unloaded; the main window lives as long as this.
class Forms {
 public:
  Forms(const Services& services, StartOptions options);
  ~Forms();
  Forms(const Forms&) = delete;
  Forms& operator=(const Forms&) = delete;

  // The stem of the restore point that was chosen last; empty when none was.
  std::string chosenRestorePoint;

  FormSlot<frmSplash> splash;
  FormSlot<frmClose> close;
  FormSlot<frmCloseIE> closeIE;
  FormSlot<frmReBootMachine> reBootMachine;
  FormSlot<frmIngnoredSpywares> ingnoredSpywares;
  FormSlot<frmIngnoredProcesses> ingnoredProcesses;
  FormSlot<frmRestore> restore;

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

  std::unique_ptr<frmMain> main_;
  std::vector<Entry> all_;
};

}  // namespace quarnel
