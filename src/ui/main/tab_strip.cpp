#include "ui/main/tab_strip.h"

#include <string_view>

namespace quarnel {

TabStrip::TabStrip(Form& owner) : form(owner) {
  static constexpr std::array<std::string_view, kCount> kNames = {
      "&Scan",        "&Defender",           "&Configuration", "Sch&edule",
      "&Live Update", "&Browser && Startup", "&News"};
  for (size_t i = 0; i < kCount; ++i) {
    const std::string index = "(" + std::to_string(i) + ")";
    imgMainTab[i] = std::make_unique<Image>(form, "imgMainTab" + index, kNames[i]);
    imgMainTabC[i] = std::make_unique<Image>(form, "imgMainTabC" + index, kNames[i]);
    imgMainTabC[i]->SetVisible(false);
  }
  Label34.SetDragsWindow(true);
  picSpywareAdware.SetDragsWindow(true);
  Picture1.SetDragsWindow(true);
}

}  // namespace quarnel
