#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "controls/simple_controls.h"

namespace quarnel {

// One line of the summary: its name, its value, and the icon that says whether it is well.
struct SummaryRow {
  SummaryRow(Form& owner, size_t row) : form(owner), index("(" + std::to_string(row) + ")") {}

  Form& form;
  std::string index;
  Label lblSystemSummaryLabel{form, "lblSystemSummaryLabel" + index};
  Label lblSystemSummaryValue{form, "lblSystemSummaryValue" + index};
  Image imgSystemSummaryBigSmallBlue{form, "imgSystemSummaryBigSmallBlue" + index};
  Image imgSystemSummaryBigSmallRed{form, "imgSystemSummaryBigSmallRed" + index};
};

// The first thing that the user sees: whether the machine is in a good state.
struct SummaryPage {
  Form& form;
  Panel picSummary{form, "picSummary"};
  Panel picSummaryBase{form, "picSummaryBase"};
  Label lblSummaryTitle{form, "lblSummaryTitle",
                        "The Item(s) marked in red require your attention"};
  std::array<SummaryRow, 6> rows = {
      {{form, 0}, {form, 1}, {form, 2}, {form, 3}, {form, 4}, {form, 5}}};
  Image imgSystemSummaryBigLogoBlue{form, "imgSystemSummaryBigLogoBlue"};
  Image imgSystemSummaryBigLogoRed{form, "imgSystemSummaryBigLogoRed"};
  Image imgUpdatesAvailable{form, "imgUpdatesAvailable"};
  Label lblUpdatesAvailable{form, "lblUpdatesAvailable", "Updates Available"};
  Label lblSignatureVersion{form, "lblSignatureVersion"};
  Label lblApplicationVersion{form, "lblApplicationVersion"};
};

}  // namespace quarnel
