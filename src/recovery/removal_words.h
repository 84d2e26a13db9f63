#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "recovery/removal_report.h"

// What a removal came to, in the words that reports, the end screen and the clipboard share.
namespace quarnel {

// Of what a restore point does not hold.
inline constexpr std::string_view kUnsavedOutcome = "not saved";

// "none", "complete" or "incomplete".
std::string_view RestorePointState(const RemovalReport& report);
bool RestorePointIsIncomplete(const RemovalReport& report);
// The common beginning of the restore point's files; empty without one.
std::string RestorePointPath(const RemovalReport& report);

// How many came to each fate: "3 removed, 1 kept (1 on the safe list), 0 failed."
std::string CountsText(const RemovalReport& report);

// A line of the report. A trace's begins with its fate.
struct ReportLine {
  std::string text;
  std::string_view fate;
  bool alarming = false;  // it tells of something that is not gone
};
// The whole report. What cannot be brought back comes first: it is gone for good.
std::vector<ReportLine> ReportLines(const RemovalReport& report);
// The same as one text, with CR LF behind each line.
std::string ReportText(const RemovalReport& report);

}  // namespace quarnel
