#pragma once

#include <string>
#include <string_view>
#include <utility>

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

// The phases of a scan, as they are named to the user.
namespace phase {
inline constexpr std::string_view kCookies = "Cookies";
inline constexpr std::string_view kMemory = "Memory";
inline constexpr std::string_view kRegistry = "Registry";
inline constexpr std::string_view kFiles = "Files";
inline constexpr std::string_view kDeep = "Deep scan";
}  // namespace phase

// A phase's procedure in the reporting mode. What ends it early is told to the user, too, with the
// place that `where` gives.
template <typename Where, typename Procedure>
bool ReportingPhase(const ScanContext& u, std::string_view label, std::string_view phase,
                    const Where& where, Procedure&& procedure) {
  return Reporting(u.log, label, [&] {
    try {
      std::forward<Procedure>(procedure)();
    } catch (const RuntimeError& error) {
      u.unread.AddNotRun(phase, std::string(where()) + ": " + error.Description());
      throw;
    }
  });
}

}  // namespace quarnel
