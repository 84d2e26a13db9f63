#pragma once

#include <array>
#include <string>
#include <string_view>

#include "controls/simple_controls.h"
#include "controls/tool_tip.h"
#include "core/settings.h"
#include "scan/results.h"
#include "schedule/schedule_page.h"
#include "ui/options_page.h"

namespace quarnel {

// One line of the summary: its name, its value, and the icon that says whether it is well.
struct SummaryRow {
  SummaryRow(Form& form, size_t index);
  Label lblSystemSummaryLabel;
  Label lblSystemSummaryValue;
  Image imgSystemSummaryBigSmallBlue;
  Image imgSystemSummaryBigSmallRed;
};

// The first thing that the user sees: whether the machine is in a good state.
struct SummaryPage {
  explicit SummaryPage(Form& form);

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

// Repaints the summary page from the store and from the state of other controls.
class Summary {
 public:
  struct Uses {
    SummaryPage& page;
    const OptionsPage& options;
    const SchedulePage& schedule;
    const ResultsPage& results;
    const Settings& settings;
  };
  explicit Summary(const Uses& uses) : u_(uses) {}

  // Gives each row's name its balloon, which tells more about the row's present value.
  void CreateBalloons();

  // Raises where the stored time of the last scan is no date, which leaves the page half painted.
  void RefreshSystemSummary();

 private:
  void Reset();
  void ShowGood(size_t row, std::string_view value);
  // A bad row turns the big picture red. Not every one changes the title's words.
  void ShowBad(size_t row, std::string_view value);
  void RequireAttention();
  void ShowLastScan(const std::string& start);
  void ShowLastResults(bool scanned);
  void ShowSchedule();
  void ShowProtection();
  void ShowDefinitions();
  void ShowUpdater();
  std::string ScheduleText() const;
  std::string TipText(size_t row) const;

  Uses u_;
  std::array<CToolTip, 6> balloons_;
};

}  // namespace quarnel
