#pragma once

#include <string_view>

#include "core/main_window.h"
#include "core/settings.h"
#include "scan/cookie_scan.h"
#include "scan/deep_scan.h"
#include "scan/file_scan.h"
#include "scan/hash_ahead.h"
#include "scan/memory_scan.h"
#include "scan/registry_scan.h"
#include "scan/scan_context.h"

namespace quarnel {

// The phases of a scan, one after the other, each with its captions and its test for the signature
// file. Events are processed at each step.
class ScanPhases {
 public:
  struct Uses {
    const ScanContext& context;
    Processes& processes;
    Registry& registry;
    const Settings& settings;
    MainWindow& window;
  };
  explicit ScanPhases(const Uses& uses);

  // Runs them all. A stop that was requested is met at the next step.
  void StartScanning();

  CookieScan& cookies() { return cookies_; }
  MemoryScan& memory() { return memory_; }

 private:
  void BeginPhases();
  void CookiePhase();
  void MemoryPhase();
  void RegistryPhase();
  void FilePhase();
  void DeepPhase();
  void EndPhases();
  void NextPhase(std::string_view caption);
  bool CanUse(std::string_view phase, std::string_view signatureFile);
  void MeasureBy(std::string_view signatureFile);

  ScanContext u_;
  const Settings& settings_;
  CookieScan cookies_;
  MemoryScan memory_;
  RegistryScan registry_;
  FileScan files_;
  HashPool pool_;
  DeepScan deep_;
};

}  // namespace quarnel
