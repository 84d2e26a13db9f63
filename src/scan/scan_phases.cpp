#include "scan/scan_phases.h"

#include <algorithm>
#include <thread>

#include "core/paths.h"
#include "core/system_version.h"
#include "scan/hard_drives.h"
#include "scan/progress.h"
#include "signatures/signature_files.h"

namespace quarnel {

ScanPhases::ScanPhases(const Uses& uses)
    : u_(uses.context),
      settings_(uses.settings),
      cookies_(u_, settings_.ApplicationName()),
      memory_(u_, uses.processes,
              [&window = uses.window](const MemoryAlert& alert) { window.Alert(alert); }),
      registry_(u_, uses.registry),
      files_(u_),
      pool_(std::max(1U, std::thread::hardware_concurrency())),
      deep_(u_, &pool_) {}

void ScanPhases::NextPhase(std::string_view caption) {
  u_.page.form.Refresh();
  u_.page.pbgMain.SetValue(0);
  u_.page.lblPercentageCompleted.SetCaption(caption);
}

void ScanPhases::BeginPhases() {
  u_.page.form.Refresh();
  u_.resultsPage.vbatvwResults.Clear();
  u_.page.lblMD5Scanned.SetCaption("0");
  u_.page.lblMD5Infected.SetCaption("0");
  u_.resultsPage.facts.flatTree = true;
  Show(u_.resultsPage);
  u_.page.lblScanning.SetCaption("");
  u_.page.lblPercentageCompleted.SetCaption("");
  u_.page.pbgMain.SetValue(0);
  u_.page.facts.named = u_.page.facts.percent = u_.page.facts.measured = true;
  Show(u_.page);
}

// A phase whose signatures cannot be used is named, whatever the reason.
bool ScanPhases::CanUse(std::string_view phase, std::string_view signatureFile) {
  const std::string reason = WhyUnusable(u_.files, u_.machine, signatureFile);
  if (!reason.empty()) u_.unread.AddNotRun(phase, reason);
  return reason.empty();
}

// The bar's maximum is what the file's first line says, whatever it holds.
void ScanPhases::MeasureBy(std::string_view signatureFile) {
  ShowMaximum(u_.page.pbgMain, GetSignatureCount(u_.files, u_.machine, signatureFile));
}

void ScanPhases::CookiePhase() {
  u_.page.form.Refresh();
  if (!settings_.Get(setting::kScansCookies)) return;
  u_.page.lblStatus.SetCaption("Scanning Cookies...");
  u_.page.lblPercentageCompleted.SetCaption("Scanning Cookies...         ");
  if (CanUse(phase::kCookies, signature_file::kBlockedCookies)) {
    u_.resultsPage.lvwTrackingCookieObjectrecognized.Clear();
    cookies_.DeleteSelectedCookies(u_.resultsPage.lvwTrackingCookieObjectrecognized, false);
  }
  u_.page.lblStatus.SetCaption("");
}

void ScanPhases::MemoryPhase() {
  NextPhase("Scanning Memory - 0% Completed");
  if (!settings_.Get(setting::kScansMemory)) return;
  u_.page.lblStatus.SetCaption("Inspecting memory...");
  if (!CanUse(phase::kMemory, signature_file::kPrograms)) return;
  MeasureBy(signature_file::kPrograms);
  switch (GetOSVersionInfo(u_.machine, u_.host, settings_.ApplicationName())) {
    case static_cast<int>(SystemFamily::kWindows9x):
      memory_.CountProcessIn95();
      break;
    case static_cast<int>(SystemFamily::kWindowsNt):
      memory_.MemoryItemsInspection(u_.page.pbgMain);
      break;
    default:
      u_.unread.AddNotRun(phase::kMemory, "the system's kind is not known");
  }
}

void ScanPhases::RegistryPhase() {
  NextPhase("Scanning Registry - 0% Completed");
  if (!settings_.Get(setting::kScansRegistry)) return;
  if (!CanUse(phase::kRegistry, signature_file::kRegistry)) return;
  MeasureBy(signature_file::kRegistry);
  registry_.ScanRegistry();
}

void ScanPhases::FilePhase() {
  u_.page.facts.told = true;
  Show(u_.page);
  NextPhase("Scanning Files/Folder - 0% Completed");
  if (!CanUse(phase::kFiles, signature_file::kFiles)) return;
  MeasureBy(signature_file::kFiles);
  files_.ScanSignatureFiles();
}

void ScanPhases::DeepPhase() {
  if (!settings_.Get(setting::kScansDeep)) return;
  u_.page.form.Refresh();
  for (const std::string& drive : MissingDrives(u_.page, settings_, u_.machine)) {
    u_.unread.Add("drive", drive);
  }
  for (size_t i = 0; i < u_.page.lvwHardDrives.Count(); ++i) {
    if (u_.flags.scanStopRequested) return;
    const ListRow row = u_.page.lvwHardDrives.At(i);
    if (!row.checked) continue;
    if (!CanUse(phase::kDeep, signature_file::kPrograms)) return;
    // Each drive ends with the signatures forgotten, so each loads them.
    if (deep_.LoadSignatureHashText()) deep_.ScanDrive(row.key + ":\\");
  }
}

void ScanPhases::EndPhases() {
  u_.page.form.Refresh();
  u_.page.facts.measured = false;
  Show(u_.page);
  u_.page.lblStatus.SetCaption("");
  u_.page.pbgMain.SetValue(0);
}

void ScanPhases::StartScanning() {
  Reporting(u_.log, "StartScanning in frmMain", [&] {
    BeginPhases();
    struct Phase {
      std::string_view name;
      void (ScanPhases::*run)();
    };
    for (const Phase& each : {Phase{phase::kCookies, &ScanPhases::CookiePhase},
                              Phase{phase::kMemory, &ScanPhases::MemoryPhase},
                              Phase{phase::kRegistry, &ScanPhases::RegistryPhase},
                              Phase{phase::kFiles, &ScanPhases::FilePhase},
                              Phase{phase::kDeep, &ScanPhases::DeepPhase}}) {
      if (u_.flags.scanStopRequested) return;
      // A failure ends its own phase only.
      ReportingPhase(
          u_, "StartScanning in frmMain", each.name, [] { return "its start"; },
          [&] { (this->*each.run)(); });
    }
    if (!u_.flags.scanStopRequested) EndPhases();
  });
}

}  // namespace quarnel
