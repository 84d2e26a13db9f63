#pragma once

#include "controls/date_picker.h"
#include "controls/simple_controls.h"

namespace quarnel {

// The controls of the schedule page. The two buttons show only while something was changed.
struct SchedulePage {
  Form& form;
  Panel picScheduleBase{form, "picScheduleBase"};
  CheckBox chkAutomaticScanYesOrNo{form, "chkAutomaticScanYesOrNo", "Enable Auto Scan"};
  Label lblEnableAutoScan{form, "lblEnableAutoScan", "Enable Auto Scan"};
  ComboBox cmbDays{form, "cmbDays"};
  DatePicker dtpScheduleDate{
      form, "dtpScheduleDate", DatePicker::Kind::kDate, "MM/dd/yyyy", {.checkBox = true}};
  DatePicker dtpScheduleTime{form,
                             "dtpScheduleTime",
                             DatePicker::Kind::kTime,
                             "hh:mm:ss",
                             {.checkBox = true, .upDown = true}};
  Button cmdProceed{form, "cmdProceed", "&Apply"};
  Button cmdDefaultSetting{form, "cmdDefaultSetting", "&Reset"};
};

}  // namespace quarnel
