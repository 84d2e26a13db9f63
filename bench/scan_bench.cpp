#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "core/existing_files.h"
#include "core/like.h"
#include "phase_data.h"
#include "scan/pattern_set.h"
#ifdef QUARNEL_HAS_RE2
#include <re2/set.h>
#endif

// Each phase of a scan against the least that its work can be done with.
namespace quarnel {
namespace {

using Seconds = std::chrono::duration<double>;

// What part of a phase its event processing took, in percent: as many turns once more, alone.
void CountEvents(benchmark::State& state, CountingHost& host, Seconds phase) {
  const uint64_t turns = host.turns;
  const auto start = std::chrono::steady_clock::now();
  for (uint64_t i = 0; i < turns; ++i) host.DoEvents();
  const Seconds events = std::chrono::steady_clock::now() - start;
  state.counters["events_%"] = 100 * events / phase;
}

// Runs a phase on a machine that was just opened, and takes only the phase's time.
template <typename Phase>
void TimePhase(benchmark::State& state, ScanRig& rig, const Phase& phase) {
  const auto start = std::chrono::steady_clock::now();
  phase();
  const Seconds seconds = std::chrono::steady_clock::now() - start;
  state.SetIterationTime(seconds.count());
  CountEvents(state, rig.host, seconds);
}

FilePhaseData& FileData() {
  static FilePhaseData data;
  return data;
}

uint64_t NextSeed() {
  static uint64_t seed = 0;
  return ++seed;
}

void FilesBaseline(benchmark::State& state) {
  FilePhaseData& data = FileData();
  for ([[maybe_unused]] auto round : state) {
    {
      ScanRig rig(data.machine.Folder());
      data.Renew(rig, NextSeed());
    }
    const auto start = std::chrono::steady_clock::now();
    int found = 0;
    for (const std::string& path : data.hostPaths) {
      struct stat status = {};
      found += stat(path.c_str(), &status) == 0 ? 1 : 0;
    }
    state.SetIterationTime(Seconds(std::chrono::steady_clock::now() - start).count());
    if (found != kPhaseFinds) state.SkipWithError("wrong number of files");
  }
}

// The program's own test of existence, which finds a name in any letter case, path by path.
void FilesOneByOne(benchmark::State& state) {
  FilePhaseData& data = FileData();
  for ([[maybe_unused]] auto round : state) {
    ScanRig rig(data.machine.Folder());
    data.Renew(rig, NextSeed());
    const std::string drive = data.machine.Host("C:\\");
    std::vector<std::string> paths;
    for (const std::string& path : data.hostPaths) {
      paths.push_back("C:" + Replace(path.substr(drive.size()), "/", "\\"));
    }
    const auto start = std::chrono::steady_clock::now();
    int found = 0;
    for (const std::string& path : paths) found += FileExists(rig.files(), path) ? 1 : 0;
    state.SetIterationTime(Seconds(std::chrono::steady_clock::now() - start).count());
    if (found != kPhaseFinds) state.SkipWithError("wrong number of files");
  }
}

void FilesPhase(benchmark::State& state) {
  FilePhaseData& data = FileData();
  for ([[maybe_unused]] auto round : state) {
    ScanRig rig(data.machine.Folder());
    data.Renew(rig, NextSeed());
    FileScan scan = rig.File();
    TimePhase(state, rig, [&] { scan.ScanSignatureFiles(); });
    if (rig.resultsPage.lvwFilesToBeDeleted.Count() != kPhaseFinds) {
      state.SkipWithError("wrong number of finds");
    }
  }
}

RegistryPhaseData& RegistryData() {
  static const std::unique_ptr<RegistryPhaseData> kData = std::make_unique<RegistryPhaseData>();
  return *kData;
}

// The same keys asked from the database behind the registry, with a prepared statement.
void RegistryBaseline(benchmark::State& state) {
  RegistryPhaseData& data = RegistryData();
  sqlite3* database = nullptr;
  sqlite3_stmt* find = nullptr;
  if (sqlite3_open_v2((data.machine.Folder() + "/registry.db").c_str(), &database,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK ||
      sqlite3_prepare_v2(database, "SELECT id FROM keys WHERE path = ?", -1, &find, nullptr) !=
          SQLITE_OK) {
    state.SkipWithError("no registry");
  }
  for ([[maybe_unused]] auto round : state) {
    const auto start = std::chrono::steady_clock::now();
    int found = 0;
    for (const std::string& path : data.storePaths) {
      sqlite3_bind_text(find, 1, path.data(), static_cast<int>(path.size()), SQLITE_STATIC);
      found += sqlite3_step(find) == SQLITE_ROW ? 1 : 0;
      sqlite3_reset(find);
    }
    state.SetIterationTime(Seconds(std::chrono::steady_clock::now() - start).count());
    if (found != kPhaseFinds) state.SkipWithError("wrong number of keys");
  }
  sqlite3_finalize(find);
  sqlite3_close(database);
}

void RegistryPhase(benchmark::State& state) {
  for ([[maybe_unused]] auto round : state) {
    ScanRig rig(RegistryData().machine.Folder());
    RegistryScan scan = rig.Registry();
    TimePhase(state, rig, [&] { scan.ScanRegistry(); });
    if (rig.resultsPage.lvwRegistryEntriesFound.Count() != kPhaseFinds) {
      state.SkipWithError("wrong number of finds");
    }
  }
}

CookiePhaseData& CookieData() {
  static CookiePhaseData data;
  return data;
}

// How many of the domains fit a pattern, by the plain loop.
size_t BlockedDomains() {
  static const size_t kCount = [] {
    size_t count = 0;
    for (const std::string& domain : CookieData().domains) {
      for (const std::string& pattern : CookieData().patterns) {
        if (!Like(domain, pattern)) continue;
        ++count;
        break;
      }
    }
    return count;
  }();
  return kCount;
}

void CookiesPhase(benchmark::State& state) {
  const size_t wanted = BlockedDomains();
  for ([[maybe_unused]] auto round : state) {
    ScanRig rig(CookieData().machine.Folder());
    CookieScan scan = rig.Cookies();
    ListView& list = rig.resultsPage.lvwTrackingCookieObjectrecognized;
    TimePhase(state, rig, [&] { scan.DeleteSelectedCookies(list, false); });
    if (list.Count() != wanted) state.SkipWithError("wrong number of finds");
  }
}

#ifdef QUARNEL_HAS_RE2
void PatternsReady(benchmark::State& state) {
  const PatternSet set(CookieData().patterns);
  for ([[maybe_unused]] auto round : state) {
    size_t found = 0;
    for (const std::string& domain : CookieData().domains)
      found += set.FirstMatch(domain) ? 1U : 0U;
    if (found != BlockedDomains()) state.SkipWithError("wrong number of finds");
  }
}

std::unique_ptr<re2::RE2::Set> CompileRe2() {
  re2::RE2::Options options;
  options.set_encoding(re2::RE2::Options::EncodingLatin1);
  options.set_dot_nl(true);
  options.set_max_mem(int64_t{1} << 30);
  auto set = std::make_unique<re2::RE2::Set>(options, re2::RE2::ANCHOR_BOTH);
  for (const std::string& pattern : CookieData().patterns) {
    std::string expression;
    bool inList = false;
    for (const char c : pattern) {
      if (c == '[' || c == ']') inList = c == '[';
      if (inList || c == ']') {
        expression += c;
      } else if (c == '*') {
        expression += ".*";
      } else if (c == '?') {
        expression += '.';
      } else {
        expression += re2::RE2::QuoteMeta(std::string(1, c));
      }
    }
    if (set->Add(expression, nullptr) < 0) throw std::runtime_error("bad expression");
  }
  if (!set->Compile()) throw std::runtime_error("patterns do not compile");
  return set;
}

void PatternsBaseline(benchmark::State& state) {
  const auto set = CompileRe2();
  for ([[maybe_unused]] auto round : state) {
    size_t found = 0;
    std::vector<int> matches;
    for (const std::string& domain : CookieData().domains) {
      found += set->Match(domain, &matches) ? 1U : 0U;
    }
    if (found != BlockedDomains()) state.SkipWithError("wrong number of finds");
  }
}

// What the phase has to do anyway: read the cookies, compile the patterns, match.
void CookiesBaseline(benchmark::State& state) {
  const CookiePhaseData& data = CookieData();
  for ([[maybe_unused]] auto round : state) {
    const auto start = std::chrono::steady_clock::now();
    const auto set = CompileRe2();
    size_t found = 0;
    std::vector<int> matches;
    for (const auto& entry : std::filesystem::directory_iterator(data.folder)) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string text((std::istreambuf_iterator<char>(file)), {});
      const std::string host = text.substr(9, text.find('/') - 9);
      found += set->Match(host, &matches) ? 1U : 0U;
    }
    state.SetIterationTime(Seconds(std::chrono::steady_clock::now() - start).count());
    if (found != BlockedDomains()) state.SkipWithError("wrong number of finds");
  }
}
#endif

void Add(const char* name, void (*function)(benchmark::State&), bool manual = true) {
  auto* const entry = benchmark::RegisterBenchmark(name, function);
  entry->Unit(benchmark::kMillisecond);
  if (manual) {
    entry->UseManualTime();
  } else {
    entry->UseRealTime();
  }
}

const bool kRegistered = [] {
  Add("file_phase_100k/baseline", FilesBaseline);
  Add("file_phase_100k/one_by_one", FilesOneByOne);
  Add("file_phase_100k/phase", FilesPhase);
  Add("registry_phase_100k/baseline", RegistryBaseline);
  Add("registry_phase_100k/phase", RegistryPhase);
#ifdef QUARNEL_HAS_RE2
  Add("cookie_patterns_10k/baseline", PatternsBaseline, false);
  Add("cookie_patterns_10k/ready", PatternsReady, false);
  Add("cookie_phase_10k/baseline", CookiesBaseline);
#endif
  Add("cookie_phase_10k/phase", CookiesPhase);
  return true;
}();

}  // namespace
}  // namespace quarnel
