#pragma once

#include <string_view>

#include "core/settings.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "scan/results_page.h"
#include "scan/unread.h"

// What a scan leaves on the disk. What cannot be saved is noted, and ends nothing.
namespace quarnel {

// Dumps the four lists of results into the data folder, one line a row, and beside them what could
// not be read.
void SaveLastScanResults(Files& files, Machine& machine, const ResultsPage& results,
                         Unread& unread);

// The way back: fills the four lists with what the last scan found, and the removals since have
// left. False when that cannot be read.
bool LoadLastScanResults(Files& files, Machine& machine, ResultsPage& results);

// Adds an entry to ScanHistory.ini in the program's folder: the value is start, end and number of
// threats.
void WriteScanHistory(Files& files, Machine& machine, std::string_view key, std::string_view value,
                      Unread& unread);

// Keeps when a scan began or ended. Without the registry's settings a scan is not whole.
void SaveScanTime(Settings& settings, const SettingKey<setting::Date>& key, const DateTime& time,
                  Unread& unread);

}  // namespace quarnel
