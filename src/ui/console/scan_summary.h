#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "scan/found_traces.h"
#include "ui/console/records.h"

namespace quarnel {

struct ScanThreat {
  std::string name;
  std::string type;
  std::string level;
  std::vector<std::string> traces;   // found
  std::vector<std::string> ignored;  // found too, but on the safe list

  // A threat all of whose traces are on the safe list is none.
  bool Counts() const { return !traces.empty(); }
};

// What a scan found, and how it ended.
struct ScanSummary {
  bool scanned = true;  // false when there is no scan to tell of
  std::string status;   // "Scanning completed."
  std::vector<ScanThreat> threats;
  // What could not be read, "file C:\\x": neither a find nor known to be clean. The count may be
  // higher than what is named.
  std::vector<std::string> unread;
  size_t unreadCount = 0;
  // Phases that did not run to their end, and records that could not be saved, each with why.
  std::vector<std::string> notRun;
  std::vector<std::string> notSaved;
  // Every phase ran, and the registry could be used.
  bool whole = true;
  // Why nothing can be concluded from it, such as missing signature files; empty when all is well.
  std::string problem;

  size_t ThreatCount() const;
  size_t TraceCount() const;
  size_t IgnoredCount() const;
};

// The threats with all their traces, those of the results tree in its order.
std::vector<ScanThreat> ThreatsOf(const ResultsPage& results, const std::vector<FoundTrace>& traces,
                                  const std::function<int(std::string_view name)>& levelOf);

// Prints the threats as a table with their traces below, and one line that sums up.
void PrintSummary(const ScanSummary& summary, std::ostream& out, bool colours);

// The same as records: one for each threat (threat, type, level, traces, ignored), and one with the
// numbers of threats, traces and ignored traces, whether all was scanned, and the status.
void WriteSummary(const ScanSummary& summary, RecordWriter& records);

}  // namespace quarnel
