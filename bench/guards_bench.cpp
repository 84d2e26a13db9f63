#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "base/text.h"
#include "core/error_log.h"
#include "core/paths.h"
#include "core/settings.h"
#include "idle_host.h"
#include "platform/machine_folder.h"
#include "protection/browser_settings.h"
#include "protection/helper_objects.h"
#include "protection/memory_shield.h"
#include "protection/startup_shield.h"
#include "scan_rig.h"
#include "signatures/compiler.h"
#include "signatures/md5.h"
#include "support/recording_window.h"
#include "temporary_machine.h"

namespace quarnel {
namespace {

// What each guard works on: a machine, and the form that its page stands on.
struct Rig {
  TemporaryMachine machine;
  std::unique_ptr<Platform> platform = OpenMachine(machine.Folder());
  RealClock clock;
  IdleHost host{clock};
  Settings settings{platform->registry(), "Quarnel"};
  ErrorLog log{platform->files(), platform->machine(), host, "Quarnel"};
  Form form{host, "frmMain"};
  RecordingWindow window;
};

// A machine whose browser has all settings, as they were when they were first seen.
struct Browser : Rig {
  Browser() {
    for (const BrowserSetting& setting : BrowserSettingTable()) {
      RegCreateKeyValue(platform->registry(), setting.hive, setting.key, setting.value,
                        DefaultOf(setting, platform->machine()));
    }
    guard.LoadBrowserSettings();
  }

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

constexpr int kHelpers = 40;
const std::string kObjects =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";

std::string HelperId(int number) {
  return "{7E570000-0000-4000-8000-" + std::to_string(100000000000 + number) + "}";
}

std::string ObjectKey(const std::string& id) { return Join({kObjects, id}, "\\"); }

// A machine with helper objects, all of which the record knows.
struct HelpersRig : Rig {
  HelpersRig() {
    Registry& registry = platform->registry();
    for (int i = 0; i < kHelpers; ++i) {
      const std::string id = HelperId(i);
      const std::string server = "C:\\WINDOWS\\system32\\helper" + std::to_string(i) + ".dll";
      WriteWholeFile(platform->files(), server, std::string(20000, 'x'));
      RegCreateKeyValue(registry, hive::kClassesRoot, "CLSID\\" + id, "",
                        "Helper " + std::to_string(i));
      RegCreateKeyValue(registry, hive::kClassesRoot, "CLSID\\" + id + "\\InprocServer32", "",
                        server);
      RegCreateKeyValue(registry, hive::kLocalMachine, ObjectKey(id), "", std::string("v"));
    }
    helpers.LoadBHOList(page.lvwBHOs);
  }

  AdvancedToolsPage page{form};
  HelperObjects helpers{{.page = page, .services = {*platform, host, settings, log}}};
};

// The same values, and nothing else.
void HelpersBaseline(benchmark::State& state) {
  const HelpersRig rig;
  Registry& registry = rig.platform->registry();
  for ([[maybe_unused]] auto round : state) {
    for (const std::string& id : EnumSubKeys(registry, hive::kLocalMachine, kObjects)) {
      std::string text;
      GetKeyValue(registry, hive::kClassesRoot, "CLSID\\" + id, "", text);
      GetKeyValue(registry, hive::kClassesRoot, "CLSID\\" + id + "\\InprocServer32", "", text);
      GetKeyValue(registry, hive::kLocalMachine, ObjectKey(id), "", text);
      benchmark::DoNotOptimize(text);
    }
  }
}

void HelpersPass(benchmark::State& state) {
  HelpersRig rig;
  for ([[maybe_unused]] auto round : state) rig.helpers.LoadBHOList(rig.page.lvwBHOs);
}

// The memory shield at rest, after its first look at the running programs.
struct MemoryRig {
  MemoryRig() {
    const CompiledSet set = CompileSet({.programs = HexText(Md5Of("bad")) + "^11^Runner\n"});
    for (const CompiledFile& file : set.files) {
      WriteWholeFile(rig.files(), DataFolder(rig.machine()) + file.name, file.bytes);
    }
    rig.page.ImgStopScanMouseMove.SetEnabled(false);
    options.chkMemorySheild.SetValue(1);
    shield.Inspect();
  }

  TemporaryMachine folder;
  ScanRig rig{folder.Folder()};
  OptionsPage options{rig.form};
  Settings settings{rig.platform().registry(), "Quarnel"};
  RecordingWindow window;
  MemoryShield shield{{.scan = rig.context,
                       .processes = rig.platform().processes(),
                       .files = rig.files(),
                       .options = options,
                       .settings = settings,
                       .window = window}};
};

// The list of processes alone.
void MemoryBaseline(benchmark::State& state) {
  MemoryRig memory;
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(memory.rig.platform().processes().Snapshot());
  }
}

void MemoryPass(benchmark::State& state) {
  MemoryRig memory;
  for ([[maybe_unused]] auto round : state) memory.shield.Inspect();
  state.counters["inspected"] = static_cast<double>(memory.shield.WhatItDid().inspected);
}

// A machine of sixty entries that start with it, all of which are allowed.
struct StartupRig : Rig {
  StartupRig() {
    constexpr int kEach = 10;
    for (size_t step = 1; step < startup::kWalked; ++step) {
      const startup::Place place = *startup::Locations()[step].walked;
      for (int i = 0; i < kEach; ++i) {
        const std::string number = std::to_string(i);
        RegCreateKeyValue(platform->registry(), place.hive, place.key, "Entry " + number,
                          "\"C:\\Program Files\\Entry\\entry" + number + ".exe\" /quiet");
      }
    }
    shield.LoadJustAfterInstallation();
    Pass();
    settings.Save(setting::kJustAfterInstallation, false);
    shield.LoadJustAfterInstallation();
    Pass();
  }
  // All locations once, each with the list made anew as a tick does.
  void Pass() {
    for (size_t step = 0; step < startup::kWalked; ++step) shield.Reload();
  }

  AdvancedToolsPage page{form};
  OptionsPage options{form};
  StartupShield shield{{page, options, {*platform, host, settings, log}, window}};
};

// The same values, and nothing else.
void StartupBaseline(benchmark::State& state) {
  const StartupRig rig;
  for ([[maybe_unused]] auto round : state) {
    for (size_t step = 1; step < startup::kWalked; ++step) {
      startup::EnumerateRegKeyValues(rig.platform->registry(), *startup::Locations()[step].walked,
                                     [](const std::string& name, const std::string&) {
                                       benchmark::DoNotOptimize(name);
                                       return true;
                                     });
    }
  }
}

void StartupPass(benchmark::State& state) {
  StartupRig rig;
  const std::string file =
      GetPathWithSlash(rig.platform->machine().ProgramFolder()) + "Quarnel_Startup.txt";
  const FileTime before = rig.platform->files().Stat(file)->modified;
  for ([[maybe_unused]] auto round : state) rig.Pass();
  state.counters["written"] = rig.platform->files().Stat(file)->modified == before ? 0 : 1;
}

template <typename Function>
void Add(const char* name, Function function) {
  benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond)->UseRealTime();
}

const bool kRegistered = [] {
  Add("twenty_browser_settings/baseline", BrowserBaseline);
  Add("twenty_browser_settings/pass", BrowserPass);
  Add("forty_helper_objects/baseline", HelpersBaseline);
  Add("forty_helper_objects/pass", HelpersPass);
  Add("memory_of_the_same_count/baseline", MemoryBaseline);
  Add("memory_of_the_same_count/pass", MemoryPass);
  Add("sixty_startup_entries/baseline", StartupBaseline);
  Add("sixty_startup_entries/pass", StartupPass);
  return true;
}();

}  // namespace
}  // namespace quarnel
