#include "schedule/schedule_page.h"

namespace quarnel {

SchedulePage::SchedulePage(Form& owner) : form(owner) {
  cmbDays.SetItems({"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday",
                    "Daily", "Date & Time"});
  cmdProceed.SetVisible(false);
  cmdDefaultSetting.SetVisible(false);
}

}  // namespace quarnel
