#pragma once

#include <cstddef>

#include "core/main_window.h"
#include "core/settings.h"
#include "options/options_page.h"
#include "scan/memory_scan.h"

namespace quarnel {

// Inspects the running programs from time to time and asks the user about a listed one. What it
// finds and cannot read is none of the last scan's.
class MemoryShield {
 public:
  struct Uses {
    const ScanContext& scan;
    Processes& processes;
    Files& files;  // as they are, without a scan's watch over them
    const OptionsPage& options;
    const Settings& settings;
    MainWindow& window;
  };
  explicit MemoryShield(const Uses& uses);
  MemoryShield(const MemoryShield&) = delete;
  MemoryShield& operator=(const MemoryShield&) = delete;

  // Whether it is switched on and has signatures.
  bool Watches() const;
  // A tick of its timer: false, and nothing done, when it does not watch or a scan runs. Returns
  // when all alerts that it raised are answered.
  bool Inspect();
  // Whether an answer asked for a scan since the last call.
  bool TakeScanRequest();

  // An alert tells of its beginning and its end, whatever ended it.
  void AlertOpened();
  void AlertClosed() { flags_.alertAnswered = true; }
  bool AlertIsAnswered() const { return flags_.alertAnswered; }
  // The answers. A declined program enters a list, which the user can look at; it is met again all
  // the same.
  void RequestScan() { flags_.alertScanRequested = true; }
  void Decline(const MemoryAlert& alert);

  // What it did since the start of the program, and what the last inspection could not look at.
  struct Done {
    size_t inspected = 0;  // programs
    size_t alerts = 0;
    size_t declined = 0;
    size_t unread = 0;
  };
  const Done& WhatItDid() const { return done_; }

 private:
  Uses u_;
  ScanFlags& flags_;
  Unread unread_;
  ScanContext context_;
  MemoryScan inspection_;
  Done done_;
};

}  // namespace quarnel
