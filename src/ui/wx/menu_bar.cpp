#include "ui/wx/menu_bar.h"

#include "controls/mnemonic.h"
#include "ui/wx/text.h"

namespace quarnel {

MenuBar::MenuBar(wxFrame& frame, const Form& form, const std::vector<MenuLayout>& layouts,
                 const Front& front) {
  auto* bar = new wxMenuBar;
  for (const MenuLayout& layout : layouts) {
    const auto* title = dynamic_cast<MenuItem*>(form.Find(layout.title));
    if (title == nullptr) continue;
    auto* menu = new wxMenu;
    Menu& entries = menus_.emplace_back();
    for (const std::string& entry : layout.entries) {
      if (entry.empty()) {
        menu->AppendSeparator();
        continue;
      }
      auto* control = dynamic_cast<MenuItem*>(form.Find(entry));
      if (control == nullptr || !control->Visible()) continue;
      wxMenuItem* item = menu->Append(wxID_ANY, ToWx(control->Caption()) + " ");
      menu->Bind(
          wxEVT_MENU,
          [&front, control](wxCommandEvent&) { front.run([control] { control->ClickByUser(); }); },
          item->GetId());
      entries.controls.push_back(control);
      entries.items.push_back(item);
    }
    titles_.push_back(title->Caption());
    bar->Append(menu, ToWx(title->Caption()));
  }
  frame.SetMenuBar(bar);
}

void MenuBar::Sync() {
  for (Menu& menu : menus_) {
    std::vector<uint64_t> revisions;
    std::vector<std::string> captions;
    for (const MenuItem* control : menu.controls) {
      revisions.push_back(control->Revision());
      captions.push_back(control->Caption());
    }
    if (menu.revisions == revisions) continue;
    menu.revisions = std::move(revisions);
    const std::vector<CaptionText> shown = ShareMnemonics(captions);
    for (size_t i = 0; i < shown.size(); ++i) {
      menu.items[i]->SetItemLabel(ToWx(shown[i]));
      menu.items[i]->Enable(menu.controls[i]->Enabled());
    }
  }
}

}  // namespace quarnel
