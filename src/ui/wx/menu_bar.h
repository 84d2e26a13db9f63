#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/layout.h"
#include "ui/wx/wx.h"

namespace quarnel {

// The menu bar of a window, with the entries of its form.
class MenuBar {
 public:
  // The frame owns the widgets; form and front live as long as this.
  MenuBar(wxFrame& frame, const Form& form, const std::vector<MenuLayout>& layouts,
          const Front& front);

  // Shows the entries' present state.
  void Sync();
  // The captions of the menus.
  const std::vector<std::string>& Titles() const { return titles_; }

 private:
  // The revisions are those of the entries as the menu shows them.
  struct Menu {
    std::vector<MenuItem*> controls;
    std::vector<wxMenuItem*> items;
    std::vector<uint64_t> revisions;
  };

  std::vector<Menu> menus_;
  std::vector<std::string> titles_;
};

}  // namespace quarnel
