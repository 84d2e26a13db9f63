#include "protection/advanced_tools.h"

#include <string_view>

namespace quarnel {
namespace {

constexpr std::string_view kBhoNode = "IE BHO";
constexpr std::string_view kStartupNode = "Startup Programs";

}  // namespace

AdvancedTools::AdvancedTools(AdvancedToolsPage& page) : page_(page) {
  page_.tvwAdvancedTools.NodeClick = [this](const TreeNodeRef& node) {
    ShowManager(node->text == kBhoNode, node->text == kStartupNode);
  };
  page_.vbatvwStartup.SetVisible(false);
  ShowManager(false, false);
}

void AdvancedTools::AddNodes() {
  for (const std::string_view name : {kBhoNode, kStartupNode}) {
    page_.tvwAdvancedTools.AddRoot(name, name)->hasCheckBox = false;
  }
}

void AdvancedTools::Open() {
  if (page_.tvwAdvancedTools.Count() == 0 || page_.tvwAdvancedTools.Selected()) return;
  page_.tvwAdvancedTools.ClickByUser(page_.tvwAdvancedTools.At(1));
}

void AdvancedTools::ShowManager(bool bho, bool startup) {
  for (Control* control :
       std::initializer_list<Control*>{&page_.lvwBHOs, &page_.lblAllowBHO, &page_.lblBlockBHO}) {
    control->SetVisible(bho);
  }
  for (Control* control : std::initializer_list<Control*>{
           &page_.lvwStartup, &page_.lblAllowThisStartupItem, &page_.lblBlockThisStartupItem}) {
    control->SetVisible(startup);
  }
}

}  // namespace quarnel
