#pragma once

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

}  // namespace quarnel
