#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>

#include "phase_data.h"

// stop-latency-bench
//
// Presses Stop at several moments of each phase and prints the longest time from the press to the
// phase's return. A user presses at any moment and not just where events are processed, so the
// time begins with the moment chosen, whenever the program comes to look.
namespace quarnel {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr double kAim = 0.1;
bool allMet = true;

using Phase = std::function<void(ScanRig&)>;

// How long the phase runs on after a press at `moment`; negative when it had ended before.
double LatencyAt(const std::string& machine, const Phase& phase, double moment) {
  ScanRig rig(machine);
  const auto press = Clock::now() + std::chrono::duration_cast<Clock::duration>(Seconds(moment));
  rig.host.inEvents = [&] {
    if (Clock::now() >= press) rig.flags.scanStopRequested = true;
  };
  phase(rig);
  return Seconds(Clock::now() - press).count();
}

void Measure(const char* name, const std::string& machine, const Phase& phase,
             std::initializer_list<double> moments) {
  double longest = -1;
  for (const double moment : moments) {
    longest = std::max(longest, LatencyAt(machine, phase, moment));
  }
  allMet = allMet && longest >= 0 && longest <= kAim;
  if (longest < 0) {
    std::printf("%-44s ended before\n", name);
  } else {
    std::printf("%-44s %8.1f ms\n", name, longest * 1000);
  }
}

void MakeSparse(const std::string& path) {
  std::ofstream(path, std::ios::binary).close();
  std::filesystem::resize_file(path, uint64_t{4} << 30);
}

void DeepOf(ScanRig& rig, bool ahead) {
  HashPool pool(2);
  DeepScan scan = rig.Deep(ahead ? &pool : nullptr);
  scan.LoadSignatureHashText();
  scan.ScanFolder("C:\\big");
}

void Run() {
  {
    const CookiePhaseData data;
    Measure("cookie phase", data.machine.Folder(),
            [](ScanRig& rig) {
              rig.Cookies().DeleteSelectedCookies(rig.resultsPage.lvwTrackingCookieObjectrecognized,
                                                  false);
            },
            {0.0, 0.005, 0.01});
  }
  {
    const RegistryPhaseData data;
    Measure("registry phase", data.machine.Folder(),
            [](ScanRig& rig) { rig.Registry().ScanRegistry(); }, {0.0, 0.02, 0.05, 0.1});
  }
  {
    FilePhaseData data;
    {
      ScanRig rig(data.machine.Folder());
      data.Renew(rig, 1);
    }
    const Phase phase = [](ScanRig& rig) { rig.File().ScanSignatureFiles(); };
    Measure("file phase", data.machine.Folder(), phase, {0.0, 0.002, 0.005, 0.01, 0.02});
  }
  const TemporaryMachine machine;
  std::filesystem::create_directory(machine.Host("C:\\big"));
  MakeSparse(machine.Host("C:\\big\\sparse.exe"));
  {
    ScanRig rig(machine.Folder());
    WriteSignatures(
        rig, signature_file::kFiles,
        {"Some company,Some threat,11,40,..\\..\\big\\sparse.exe," + std::string(32, 'A') + ",ID"});
    std::mt19937_64 random(1);
    std::vector<std::string> lines;
    lines.reserve(1'000'000);
    for (int i = 0; i < 1'000'000; ++i) {
      lines.push_back(HexNumber(random()) + HexNumber(random()) + "^11^Some.Threat.Of.Kind-" +
                      std::to_string(i));
    }
    WriteSignatures(rig, signature_file::kPrograms, lines);
  }
  Measure("file phase, inside a file of 4 GB", machine.Folder(),
          [](ScanRig& rig) { rig.File().ScanSignatureFiles(); }, {0.0, 0.2, 0.7});
  Measure("deep scan, loading 1,000,000 signatures", machine.Folder(),
          [](ScanRig& rig) { DeepOf(rig, true); }, {0.0, 0.01, 0.03, 0.05});
  Measure("deep scan, inside a file of 4 GB", machine.Folder(),
          [](ScanRig& rig) { DeepOf(rig, true); }, {0.3, 0.7, 1.5});
  Measure("the same without threads", machine.Folder(), [](ScanRig& rig) { DeepOf(rig, false); },
          {0.3, 0.7});
}

}  // namespace
}  // namespace quarnel

int main() {
  try {
    quarnel::Run();
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
  return quarnel::allMet ? 0 : 1;
}
