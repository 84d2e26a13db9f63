#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/error_log.h"
#include "core/paths.h"
#include "idle_host.h"
#include "platform/platform.h"
#include "scan/cookie_scan.h"
#include "scan/deep_scan.h"
#include "scan/file_scan.h"
#include "scan/registry_scan.h"

namespace quarnel {

// Counts how often events are processed, and lets a measurement act there as a user would.
struct CountingHost : IdleHost {
  using IdleHost::IdleHost;
  uint64_t turns = 0;
  std::function<void()> inEvents;

 protected:
  void ProcessFrontEvents(Milliseconds /*now*/) override {
    ++turns;
    if (inEvents) inEvents();
  }
};

// The pages of a scan and its phases on the machine in a folder, without a window around them.
class ScanRig {
 public:
  explicit ScanRig(const std::string& machineFolder) : platform_(OpenPlatform(machineFolder)) {
    form.Load();
  }

  Platform& platform() { return *platform_; }
  Files& files() { return platform_->files(); }
  Machine& machine() { return platform_->machine(); }

  DeepScan Deep(HashPool* pool) { return DeepScan(context, pool); }
  FileScan File() { return FileScan(context); }
  RegistryScan Registry() { return RegistryScan(context, platform_->registry()); }
  CookieScan Cookies() { return CookieScan(context, "Quarnel"); }

  RealClock clock;
  CountingHost host{clock};

 private:
  ScanContext Context() {
    return {.page = page,
            .resultsPage = resultsPage,
            .flags = flags,
            .unread = unread,
            .results = results,
            .files = files(),
            .machine = machine(),
            .host = host,
            .log = log};
  }

  std::unique_ptr<Platform> platform_;

 public:
  Form form{host, "frmMain"};
  ScanPage page{form};
  ResultsPage resultsPage{form};
  ScanFlags flags;
  Unread unread;
  ErrorLog log{files(), machine(), host, "Quarnel"};
  Results results{resultsPage, [](std::string_view) { return 3; }, host, log};
  ScanContext context{.page = page,
                      .resultsPage = resultsPage,
                      .flags = flags,
                      .unread = unread,
                      .results = results,
                      .files = files(),
                      .machine = machine(),
                      .host = host,
                      .log = log};
};

}  // namespace quarnel
