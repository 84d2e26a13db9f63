#pragma once

#include "controls/simple_controls.h"

namespace quarnel {

// The news of the maker, kept in a local file, and the way to his page for reporting a threat.
struct NewsPage {
  Form& form;
  Browser wbrNewsAndReport{form, "wbrNewsAndReport"};
  Label lblReportPage{form, "lblReportPage", "Report a threat to the maker..."};
};

}  // namespace quarnel
