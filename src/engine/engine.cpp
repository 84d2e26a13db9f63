#include "engine/engine.h"

#include "recovery/restore_note.h"
#include "scan/hard_drives.h"
#include "scan/signature_totals.h"
#include "signatures/levels.h"
#include "signatures/signature_files.h"

namespace quarnel {
namespace {

Options::Uses OptionUses(const Services& services, Pages& pages, MainWindow& window) {
  return {.page = pages.options,
          .results = pages.results,
          .scan = pages.scan,
          .settings = services.settings,
          .registry = services.platform.registry(),
          .machine = services.platform.machine(),
          .log = services.log,
          .window = window,
          .tmrMemoryInspected = pages.timers.tmrMemoryInspected,
          .tmrStartup = pages.timers.tmrStartup,
          .tmrLiveUpadate = pages.timers.tmrLiveUpadate};
}

ActiveXShield::Uses ActiveXUses(const Services& services, Pages& pages, const Options& options,
                                MainWindow& window) {
  return {.page = pages.options,
          .options = options,
          .services = services,
          .window = window,
          .tmrBlink = pages.timers.tmrBlink};
}

}  // namespace

Engine::Engine(const Services& services, Pages& pages, MainWindow& window)
    : s_(services),
      pages_(pages),
      window_(window),
      scanFiles_(s_.platform.files(), unread_),
      model_(
          pages_.results,
          [this](std::string_view name) {
            return GetThreatLevel(s_.platform.files(), s_.platform.machine(), name);
          },
          s_.host, s_.log),
      scan_{.page = pages_.scan,
            .resultsPage = pages_.results,
            .flags = flags_,
            .unread = unread_,
            .results = model_,
            .files = scanFiles_,
            .machine = s_.platform.machine(),
            .host = s_.host,
            .log = s_.log},
      phases_({.context = scan_,
               .processes = s_.platform.processes(),
               .registry = s_.platform.registry(),
               .settings = s_.settings,
               .window = window_}),
      summary_({.page = pages_.summary,
                .options = pages_.options,
                .schedule = pages_.schedule,
                .results = pages_.results,
                .unread = unread_,
                .settings = s_.settings}),
      scans_({pages_, scan_, phases_, summary_, s_.settings, window_,
              [this](Unread& unread) { results_.RequireSafeList(unread); }}),
      results_(s_, pages_.results, model_, window_),
      recovery_({s_, pages_, scan_, phases_.cookies(), scans_, window_}),
      options_(OptionUses(s_, pages_, window_)),
      scheduler_({.page = pages_.schedule,
                  .tmrScheduler = pages_.timers.tmrScheduler,
                  .settings = s_.settings,
                  .host = s_.host,
                  .log = s_.log,
                  .window = window_}),
      memoryShield_({.scan = scan_,
                     .processes = s_.platform.processes(),
                     .files = s_.platform.files(),
                     .options = pages_.options,
                     .settings = s_.settings,
                     .window = window_}),
      browserSettings_({.page = pages_.browserSettings, .services = s_, .window = window_}),
      tools_(pages_.tools),
      helpers_({.page = pages_.tools, .services = s_}),
      startups_(
          {.page = pages_.tools, .options = pages_.options, .services = s_, .window = window_}),
      activeX_(ActiveXUses(s_, pages_, options_, window_)),
      update_({.page = pages_.update,
               .settings = s_.settings,
               .window = window_,
               .tmrIsConnectionOk = pages_.timers.tmrIsConnectionOk}) {
  WireScan();
  WireTimers();
}

void Engine::WireScan() {
  pages_.scan.ImgStartScanMouseMove.Click = [this] { StartScan(); };
  pages_.scan.ImgStartScanMouseMove.MouseDown = [this] { ForgetScheduledScan(); };
  pages_.summary.lblUpdatesAvailable.Click = [this] {
    Reporting(s_.log, "lblUpdatesAvailable_Click in frmMain",
              [&] { update_.lblUpdatesAvailable_Click(); });
  };
}

void Engine::WireTimers() {
  const auto wire = [this](Timer& timer, std::string_view label, Handler work) {
    timer.Tick = [this, label, work = std::move(work)] { Reporting(s_.log, label, work); };
  };
  MainTimers& timers = pages_.timers;
  wire(timers.tmrScheduler, "tmrSchedule_Timer in frmMain", [this] { tmrScheduler_Timer(); });
  timers.tmrScheduler.IdleFor = [this] {
    return TimersAreAcordingToSetting(pages_, window_) ? scheduler_.UntilScheduledSecond()
                                                       : Milliseconds(0);
  };
  wire(timers.tmrAlertEnableDisable, "tmrAlertEnableDisable_Timer in frmMain",
       [this] { options_.RestoreAlertOption(); });
  wire(timers.tmrPreventChangeHomePage, "tmrPreventChangeHomePage_Timer",
       [this] { browserSettings_.CheckBrowserSettings(); });
  wire(timers.tmrMemoryInspected, "tmrMemoryInspected_Timer of frmMain",
       [this] { tmrMemoryInspected_Timer(); });
  wire(timers.tmrBHO, "tmrBHO_Timer of frmMain",
       [this] { helpers_.LoadBHOList(pages_.tools.lvwBHOs); });
  wire(timers.tmrStartup, "tmrStartup_Timer in frmMain", [this] { startups_.tmrStartup_Timer(); });
  wire(timers.tmrLiveUpadate, "tmrLiveUpadate_Timer of frmMain",
       [this] { update_.tmrLiveUpadate_Timer(); });
  wire(timers.tmrIsConnectionOk, "tmrIsConnectionOk_Timer of frmMain",
       [this] { update_.tmrIsConnectionOk_Timer(); });
}

void Engine::TakeGuardsOff() {
  MainTimers& timers = pages_.timers;
  for (Timer* timer : {&timers.tmrMemoryInspected, &timers.tmrPreventChangeHomePage, &timers.tmrBHO,
                       &timers.tmrStartup, &timers.tmrLiveUpadate, &timers.tmrIsConnectionOk}) {
    timer->Tick = nullptr;
  }
}

// It finds what an alert is about, and what it asks for.
void Engine::StartScan() {
  if (recovery_.Runs()) return;
  window_.EndAlert();
  memoryShield_.TakeScanRequest();
  scans_.ImgStartScanMouseMove_Click();
}

void Engine::tmrMemoryInspected_Timer() {
  if (!memoryShield_.Inspect()) return;
  // The user may have started a scan himself while the alert was open.
  if (memoryShield_.TakeScanRequest() && !ScanRuns(pages_.scan)) StartScan();
  MakeTimersEnabledOrDisableAcordingToSetting(pages_, window_);
}

// A scan that runs already is not entered a second time.
void Engine::tmrScheduler_Timer() {
  if (!ScanRuns(pages_.scan) && !recovery_.Runs() && scheduler_.TakeDueScan()) {
    window_.ShowPage(Tab::kScan);
    StartScan();
  }
  MakeTimersEnabledOrDisableAcordingToSetting(pages_, window_);
}

void Engine::LoadLastScan() { unread_ = LoadUnread(s_.platform.files(), s_.platform.machine()); }

std::vector<ShieldState> Engine::Shields() const {
  const auto ticks = [](const Timer& timer) { return timer.Enabled() && timer.Tick != nullptr; };
  const MainTimers& timers = pages_.timers;
  const OptionsPage& options = pages_.options;
  const MemoryShield::Done& memory = memoryShield_.WhatItDid();
  const StartupShield::Done& startups = startups_.WhatItDid();
  return {{.name = "memory",
           .chosen = options.chkMemorySheild.Checked(),
           .watching = memoryShield_.Watches() && ticks(timers.tmrMemoryInspected),
           .did = {{"inspected", memory.inspected},
                   {"alerts", memory.alerts},
                   {"declined", memory.declined},
                   {"unread", memory.unread}}},
          {.name = "startup",
           .chosen = options.chkStartupShield.Checked(),
           .watching = startups_.Watches() && ticks(timers.tmrStartup),
           .did = {{"walks", startups.walks},
                   {"approved", startups.approved},
                   {"blocked", startups.blocked},
                   {"alerts", startups.alerts}}},
          {.name = "helpers",
           .chosen = true,
           .watching = ticks(timers.tmrBHO),
           .did = {{"refreshes", helpers_.Refreshes()}, {"registered", helpers_.Registered()}}},
          {.name = "browser",
           .chosen = options.chkDisplayHijakRestoreAlerts.Checked(),
           .watching = options.chkDisplayHijakRestoreAlerts.Checked() &&
                       ticks(timers.tmrPreventChangeHomePage)},
          {.name = "activex",
           .chosen = options.chkSelfDownloadingActivex.Checked(),
           .watching = s_.settings.Get(setting::kSheild) == 1}};
}

void Engine::ListDrives() { GetAllHardDrives(pages_.scan, flags_, s_.platform.machine(), s_.log); }

void Engine::ShowSignatureTotals() {
  ScanPage& page = pages_.scan;
  Reporting(s_.log, "LoadTotalNoOfSignature",
            [&] { LoadTotalNoOfSignature(page, s_.platform.files(), s_.platform.machine()); });
  page.lblTotalSignatureInTabSignature.SetCaption(page.lblTotalNoOfSignature.Caption());
}

bool Engine::SignaturesPresent() {
  bool present = false;
  AllSignatureArePresent(s_.platform.files(), s_.platform.machine(), present);
  return present;
}

void Engine::ClearLeftoversOfRestores() {
  ClearLeftovers(s_.platform.files(), s_.platform.machine());
}

}  // namespace quarnel
