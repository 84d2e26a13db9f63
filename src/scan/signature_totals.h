#pragma once

#include "platform/files.h"
#include "platform/machine.h"
#include "scan/scan_page.h"

namespace quarnel {

// Adds the counts of the present signature files to lblTotalNoOfSignature and shows the sum in
// lblTotalSpywares too. Nothing is reset: a second call adds on top of the first.
void LoadTotalNoOfSignature(ScanPage& page, Files& files, Machine& machine);

}  // namespace quarnel
