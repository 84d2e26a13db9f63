#pragma once

#include <string>
#include <vector>

#include "core/error_log.h"
#include "core/settings.h"
#include "platform/machine.h"
#include "scan/scan_page.h"

namespace quarnel {

// Fills lvwHardDrives with the fixed drives that are ready; a row's key is its letter.
void GetAllHardDrives(ScanPage& page, const ScanFlags& flags, Machine& machine, ErrorLog& log);

// Writes the ticks of all rows to the settings.
void lvwHardDrives_ItemCheck(const ScanPage& page, Settings& settings);

// Ticks the rows as the settings say; on a store that has no word on a drive, the C drive is
// ticked.
void LoadDriveTicks(ScanPage& page, const Settings& settings);

// The roots of fixed drives that the settings name for the deep scan and that have no row, since
// they were not ready when the list was made.
std::vector<std::string> MissingDrives(const ScanPage& page, const Settings& settings,
                                       Machine& machine);

}  // namespace quarnel
