#include "ui/alerts/frm_home_page_changed_alert.h"

#include <string_view>

#include "platform/registry.h"
#include "protection/home_page_setting.h"
#include "ui/alerts/slide_in.h"

namespace quarnel {
namespace {

constexpr std::string_view kKey = "Software\\Microsoft\\Internet Explorer\\Main";
constexpr std::string_view kValue = "Start Page";

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
    SetHomePageKeyValue(s_, kKey, kValue, homePage, ValueType::kString);
  });
}

void frmHomePageChangedAlert::SaveSettingOfHomePageNo() {
  Reporting(s_.log, "SaveSettingOfHomePageNo",
            [&] { s_.settings.Save(setting::kHomepage, presentHomePage_); });
}

}  // namespace quarnel
