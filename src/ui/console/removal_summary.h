#pragma once

#include <ostream>

#include "recovery/removal_report.h"
#include "ui/console/records.h"

namespace quarnel {

// Prints what became of each trace, where the restore point lies, and one line that sums up.
void PrintRemoval(const RemovalReport& report, std::ostream& out, bool colours);

// The same as records: one for each trace (trace, kind, threat, fate, detail), one for each thing
// that the restore point lacks (notsaved, reason), and one with the numbers, the backup's state
// ("complete", "incomplete", "none") and the restore point's files without their endings.
void WriteRemoval(const RemovalReport& report, RecordWriter& records);

}  // namespace quarnel
