#pragma once

#include "controls/host.h"
#include "core/error_log.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "scan/results.h"
#include "scan/scan_page.h"
#include "scan/unread.h"

namespace quarnel {

// What every phase of a scan works with. A phase that needs more of the platform takes that beside
// it.
struct ScanContext {
  ScanPage& page;
  ResultsPage& resultsPage;
  ScanFlags& flags;
  Unread& unread;
  Results& results;
  Files& files;
  Machine& machine;
  Host& host;
  ErrorLog& log;
};

}  // namespace quarnel
