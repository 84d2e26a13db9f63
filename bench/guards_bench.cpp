#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "core/error_log.h"
#include "core/settings.h"
#include "idle_host.h"
#include "platform/machine_folder.h"
#include "protection/browser_settings.h"
#include "support/recording_window.h"
#include "temporary_machine.h"

namespace quarnel {
namespace {

// A machine whose browser has all settings, as they were when they were first seen.
struct Browser {
  Browser() {
    for (const BrowserSetting& setting : BrowserSettingTable()) {
      RegCreateKeyValue(platform->registry(), setting.hive, setting.key, setting.value,
                        DefaultOf(setting, platform->machine()));
    }
    guard.LoadBrowserSettings();
  }

  TemporaryMachine machine;
  std::unique_ptr<Platform> platform = OpenMachine(machine.Folder());
  RealClock clock;
  IdleHost host{clock};
  Settings settings{platform->registry(), "Quarnel"};
  ErrorLog log{platform->files(), platform->machine(), host, "Quarnel"};
  RecordingWindow window;
  Form form{host, "frmMain"};
  BrowserSettingsPage page{form};
  BrowserSettings guard{{page, {*platform, host, settings, log}, window}};
};

// Each value by itself, and nothing else.
void BrowserBaseline(benchmark::State& state) {
  const Browser browser;
  for ([[maybe_unused]] auto round : state) {
    for (const BrowserSetting& setting : BrowserSettingTable()) {
      std::string text;
      GetKeyValue(browser.platform->registry(), setting.hive, setting.key, setting.value, text);
      benchmark::DoNotOptimize(text);
    }
  }
}

void BrowserPass(benchmark::State& state) {
  Browser browser;
  for ([[maybe_unused]] auto round : state) browser.guard.CheckBrowserSettings();
}

template <typename Function>
void Add(const char* name, Function function) {
  benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond)->UseRealTime();
}

const bool kRegistered = [] {
  Add("twenty_browser_settings/baseline", BrowserBaseline);
  Add("twenty_browser_settings/pass", BrowserPass);
  return true;
}();

}  // namespace
}  // namespace quarnel
