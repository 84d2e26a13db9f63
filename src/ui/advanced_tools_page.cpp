#include "ui/advanced_tools_page.h"

#include <string_view>

namespace quarnel {
namespace {

constexpr std::string_view kBhoNode = "IE BHO";
constexpr std::string_view kStartupNode = "Startup Programs";

}  // namespace

AdvancedToolsPage::AdvancedToolsPage(Form& owner) : form(owner) {
  tvwAdvancedTools.NodeClick = [this](const TreeNodeRef& node) {
    ShowManager(node->text == kBhoNode, node->text == kStartupNode);
  };
  vbatvwStartup.SetVisible(false);
  ShowManager(false, false);
  // Nothing can be listed yet, and so nothing allowed or blocked.
  for (Label* label :
       {&lblAllowBHO, &lblBlockBHO, &lblAllowThisStartupItem, &lblBlockThisStartupItem}) {
    label->SetEnabled(false);
  }
}

void AdvancedToolsPage::AddNodes() {
  for (const std::string_view name : {kBhoNode, kStartupNode}) {
    tvwAdvancedTools.AddRoot(name, name)->hasCheckBox = false;
  }
}

void AdvancedToolsPage::Open() {
  if (tvwAdvancedTools.Count() == 0 || tvwAdvancedTools.Selected()) return;
  tvwAdvancedTools.ClickByUser(tvwAdvancedTools.At(1));
}

void AdvancedToolsPage::ShowManager(bool bho, bool startup) {
  for (Control* control : std::initializer_list<Control*>{&lvwBHOs, &lblAllowBHO, &lblBlockBHO}) {
    control->SetVisible(bho);
  }
  for (Control* control : std::initializer_list<Control*>{&lvwStartup, &lblAllowThisStartupItem,
                                                          &lblBlockThisStartupItem}) {
    control->SetVisible(startup);
  }
}

}  // namespace quarnel
