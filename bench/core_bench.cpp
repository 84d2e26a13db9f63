#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/ini_text.h"
#include "core/lines.h"
#include "idle_host.h"

namespace quarnel {
namespace {

constexpr int kKeys = 100'000;

// An ini file of one long section, as the file of threat levels is.
const std::string& LevelFile() {
  static const std::string kText = [] {
    std::mt19937 random(1);
    std::string text = "[Level]\r\n";
    for (int i = 0; i < kKeys; ++i) {
      text += "threat" + std::to_string(i) + std::string(random() % 30, 'x') + "=" +
              std::to_string(random() % 5) + "\r\n";
    }
    return text;
  }();
  return kText;
}

// Finds the line feeds and looks at nothing else.
void FeedsBaseline(benchmark::State& state) {
  const std::string& text = LevelFile();
  for ([[maybe_unused]] auto round : state) {
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end;) {
      const auto* feed =
          static_cast<const char*>(std::memchr(at, '\n', static_cast<size_t>(end - at)));
      at = feed == nullptr ? end : feed + 1;
      benchmark::DoNotOptimize(at);
    }
  }
}

void Lines(benchmark::State& state) {
  for ([[maybe_unused]] auto round : state) {
    LineReader reader(LevelFile());
    while (auto line = reader.Next()) benchmark::DoNotOptimize(line);
  }
}

void LastValue(benchmark::State& state) {
  const IniText ini(LevelFile());
  for ([[maybe_unused]] auto round : state) {
    auto value = ini.Value("level", "no such threat");
    benchmark::DoNotOptimize(value);
  }
}

constexpr int kTurns = 100'000;

void ClockBaseline(benchmark::State& state) {
  RealClock clock;
  for ([[maybe_unused]] auto round : state) {
    for (int i = 0; i < kTurns; ++i) benchmark::DoNotOptimize(clock.Ticks());
  }
}

// The main window's timers run, and none is due.
void Events(benchmark::State& state) {
  RealClock clock;
  IdleHost host(clock);
  Form form(host, "frmMain");
  std::vector<std::unique_ptr<Timer>> timers;
  timers.reserve(7);
  for (int i = 0; i < 7; ++i) {
    timers.push_back(std::make_unique<Timer>(form, "tmr", std::chrono::hours(1), true));
  }
  form.Load();
  for ([[maybe_unused]] auto round : state) {
    for (int i = 0; i < kTurns; ++i) host.DoEvents();
  }
}

template <typename Function>
void Add(const char* name, Function function) {
  benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond)->UseRealTime();
}

const bool kRegistered = [] {
  Add("lines_of_an_ini_file/baseline", FeedsBaseline);
  Add("lines_of_an_ini_file/line_reader", Lines);
  Add("lines_of_an_ini_file/absent_value", LastValue);
  Add("idle_events_100k/baseline", ClockBaseline);
  Add("idle_events_100k/do_events", Events);
  return true;
}();

}  // namespace
}  // namespace quarnel
