#pragma once

#include <array>
#include <string>
#include <string_view>

#include "controls/tool_tip.h"
#include "core/settings.h"
#include "engine/summary_page.h"
#include "options/options_page.h"
#include "scan/results_page.h"
#include "scan/unread.h"
#include "schedule/schedule_page.h"

namespace quarnel {

// Repaints the summary page from the store and from the state of other controls.
class Summary {
 public:
  struct Uses {
    SummaryPage& page;
    const OptionsPage& options;
    const SchedulePage& schedule;
    const ResultsPage& results;
    const Unread& unread;
    const Settings& settings;
  };
  explicit Summary(const Uses& uses);

  // Gives each row's name its balloon, which tells more about the row's present value.
  void CreateBalloons();

  // Raises where the stored time of the last scan is no date, which leaves the page half painted.
  void RefreshSystemSummary();

 private:
  void Reset();
  void ShowGood(size_t row, std::string_view value);
  // A bad row turns the big picture red. Not every one changes the title's words.
  void ShowBad(size_t row, std::string_view value);
  void Show(size_t row, std::string_view value, bool good);
  void ShowPicture(bool good);
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
