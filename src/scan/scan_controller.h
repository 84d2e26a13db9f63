#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/settings.h"
#include "scan/cookie_scan.h"
#include "scan/deep_scan.h"
#include "scan/file_scan.h"
#include "scan/memory_scan.h"
#include "scan/registry_scan.h"
#include "scan/scan_context.h"

namespace quarnel {

// What a scan asks of the window around its page.
class ScanSurroundings {
 public:
  virtual ~ScanSurroundings() = default;
  virtual void SelectScanTab() = 0;
  virtual void SwitchSummary(bool show) = 0;
  virtual void Done() = 0;  // the handler of cmdDone
  virtual void Next() = 0;  // the handler of imgNext(0), which opens the results
  virtual void RefreshSystemSummary() = 0;
  virtual void MakeTimersEnabledOrDisableAcordingToSetting(bool leaveAlone) = 0;
  // Whether the memory shield is on, and the switch of its timer.
  virtual bool MemoryShieldOn() const = 0;
  virtual void StopMemoryTimer() = 0;
};

// Starts, stops and pauses a scan. A scan runs inside one handler and lets events be processed at
// each step, so that Stop and Pause run nested inside it.
class ScanController {
 public:
  struct Phases {
    CookieScan& cookies;
    MemoryScan& memory;
    RegistryScan& registry;
    FileScan& files;
    DeepScan& deep;
  };
  ScanController(const ScanContext& context, const Phases& phases, ScanSurroundings& surroundings,
                 Settings& settings)
      : u_(context), phases_(phases), surroundings_(surroundings), settings_(settings) {}

  // A whole scan; returns when it is over.
  void ImgStartScanMouseMove_Click();
  // Asks, unless the form's tag says otherwise, and stops the running scan.
  void ImgStopScanMouseMove_Click();
  // Holds the scan that processes these events until the user closes a box.
  void imgPause_Click();
  // The phases alone.
  void StartScanning();
  // Dumps the four lists of results into the data folder, one line a row, and beside them what
  // could not be read.
  void SaveLastScanResults();

 private:
  std::vector<WholeFile> LastScanResults() const;
  void ResetPage();
  void ShowRunning(bool running);
  void Congratulate();
  void WriteHistory(std::string_view key, std::string_view start);
  void EndScan();

  // Each phase with its captions and its test for the signature file.
  void BeginPhases();
  void CookiePhase();
  void MemoryPhase();
  void RegistryPhase();
  void FilePhase();
  void DeepPhase();
  void EndPhases();
  void NextPhase(std::string_view caption);
  void ShowMaximum(double maximum);
  bool IsOn(const SettingKey& option);
  bool Present(std::string_view signatureFile);
  void MeasureBy(std::string_view signatureFile);

  Answer Box(std::string_view text, MessageIcon icon, MessageButtons buttons);

  ScanContext u_;
  Phases phases_;
  ScanSurroundings& surroundings_;
  Settings& settings_;
};

}  // namespace quarnel
