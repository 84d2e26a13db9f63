#include "ui/frm_home_page_changed_alert.h"

#include <string_view>

#include "platform/registry.h"
#include "ui/slide_in.h"

namespace quarnel {
namespace {

constexpr std::string_view kKey = "Software\\Microsoft\\Internet Explorer\\Main";
constexpr std::string_view kValue = "Start Page";

// The result of the open is not looked at: without the key nothing is written.
void SetHomePageKeyValue(Registry& registry, std::string_view key, std::string_view valueName,
                         const std::string& value, ValueType type) {
  std::unique_ptr<RegistryKey> open;
  registry.Open(hive::kCurrentUser, key, registry_access::kReadWrite, open);
  if (open) SetValueEx(*open, valueName, type, value);
}

}  // namespace

frmHomePageChangedAlert::frmHomePageChangedAlert(Services services)
    : Form(services.host, "frmHomePageChangedAlert"), s_(services) {
  SetCaption("IE Home Page Alert");
  SetPlace({.width = 5400, .height = 2400});
  cmdYes.Click = [this] {
    Reporting(s_.log, "cmdYes_Click in frmHomePageChangedAlert", [&] {
      SaveSettingOfHomePageYes(s_.settings.Get(setting::kHomepage));
      Close(UnloadMode::kCode);
    });
  };
  cmdNo.Click = [this] {
    Reporting(s_.log, "cmdNo_Click in frmHomePageChangedAlert", [&] {
      SaveSettingOfHomePageNo();
      Close(UnloadMode::kCode);
    });
  };
}

void frmHomePageChangedAlert::Form_Load() {
  Reporting(s_.log, "Form_Load in frmHomePageChangedAlert", [&] {
    GetKeyValue(s_.platform.registry(), hive::kCurrentUser, kKey, kValue, presentHomePage_);
    lblHomePageInfo.SetCaption("The home page of Internet Explorer is now " + presentHomePage_ +
                               ". Would you like to put " + s_.settings.Get(setting::kHomepage) +
                               " back?");
    ScreenArea place = Place();
    const SlidePlan plan = AlertPlan(host().Screen(), place.width, place.height);
    place.left = plan.left;
    place.top = plan.target;
    SetPlace(place);
    SetTopMostWindow(*this, true);
  });
}

void frmHomePageChangedAlert::SaveSettingOfHomePageYes(const std::string& homePage) {
  Reporting(s_.log, "SaveSettingOfHomePageYes", [&] {
    s_.settings.Save(setting::kHomepage, homePage);
    SetHomePageKeyValue(s_.platform.registry(), kKey, kValue, homePage, ValueType::kString);
  });
}

void frmHomePageChangedAlert::SaveSettingOfHomePageNo() {
  Reporting(s_.log, "SaveSettingOfHomePageNo",
            [&] { s_.settings.Save(setting::kHomepage, presentHomePage_); });
}

}  // namespace quarnel
