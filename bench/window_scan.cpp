// What the window costs a scan: 100,000 file signatures of which 100 exist, by turns with a front
// that shows nothing and with the window, on the display that it is given.
//
//   tools/with-display build/release/bin/window-scan-bench [ROUNDS]

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <vector>

#include "base/text.h"
#include "core/paths.h"
#include "idle_host.h"
#include "scan/folders.h"
#include "signatures/compiler.h"
#include "temporary_machine.h"
#include "ui/application.h"
#include "ui/wx/wx_host.h"

namespace quarnel {
namespace {

using std::chrono::steady_clock;

constexpr int kProgramFiles = 31;
constexpr int kSignatures = 100000;
constexpr int kFinds = 100;

// The window, whose boxes nobody answers.
class BenchHost : public WxHost {
 public:
  using WxHost::WxHost;
  Answer MsgBox(const MessageBox&) override { return Answer::kOk; }
};

void Prepare(Platform& platform) {
  const std::string folder = GetFolder(platform.machine(), kProgramFiles).front();
  std::string lines;
  for (int i = 0; i < kSignatures; ++i) {
    const std::string number = std::to_string(i);
    lines += Join({"Any,Threat ", number, ",1,31,File", number, ".txt,,7\n"}, "");
    if (i % (kSignatures / kFinds) == 0) {
      WriteWholeFile(platform.files(), Join({folder, "File", number, ".txt"}, ""), "x");
    }
  }
  for (const CompiledFile& file : CompileSet({.files = lines}).files) {
    WriteWholeFile(platform.files(), DataFolder(platform.machine()) + file.name, file.bytes);
  }
}

double Scan(Application& application) {
  const auto start = steady_clock::now();
  const std::clock_t work = std::clock();
  application.MainForm().scan.ImgStartScanMouseMove.ClickByUser();
  const std::chrono::duration<double, std::milli> took = steady_clock::now() - start;
  if (application.MainForm().results.txtAdwareSpyware.Caption() != std::to_string(kFinds)) {
    std::cerr << "not all finds were found\n";
    std::exit(1);
  }
  std::printf("%6.0f ms, %6.0f ms of work\n", took.count(),
              1000.0 * static_cast<double>(std::clock() - work) / CLOCKS_PER_SEC);
  return took.count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

int Measure(long rounds) {
  const TemporaryMachine machine;
  const std::unique_ptr<Platform> platform = OpenPlatform(machine.Folder());
  Prepare(*platform);
  RealClock clock;
  IdleHost idle(clock);
  Application without(*platform, idle, {.showSplash = false, .runWizard = false});
  without.Main();

  BenchHost host([](const std::string&) { return std::string(); });
  Application with(*platform, host, {.showSplash = false, .runWizard = false});
  std::vector<double> plain;
  std::vector<double> shown;
  wxGUIEventLoop loop;
  wxTheApp->CallAfter([&] {
    host.Act([&] {
      with.MainForm().Show();
      host.Sync();
      for (long i = 0; i < rounds; ++i) {
        plain.push_back(Scan(without));
        shown.push_back(Scan(with));
      }
    });
    loop.ScheduleExit();
  });
  loop.Run();
  std::printf("without window %.0f ms\nwith window    %.0f ms\nratio          %.3f\n",
              Median(plain), Median(shown), Median(shown) / Median(plain));
  return 0;
}

}  // namespace
}  // namespace quarnel

int main(int argc, char** argv) {
  constexpr long kRounds = 5;
  const long rounds = argc > 1 ? std::strtol(argv[1], nullptr, 10) : kRounds;
  wxApp::SetInstance(new wxApp);
  int own = 1;
  if (!wxEntryStart(own, argv)) return 1;
  wxIdleEvent::SetMode(wxIDLE_PROCESS_SPECIFIED);
  wxUpdateUIEvent::SetMode(wxUPDATE_UI_PROCESS_SPECIFIED);
  wxTheApp->SetExitOnFrameDelete(false);
  const int result = quarnel::Measure(rounds > 0 ? rounds : kRounds);
  wxEntryCleanup();
  return result;
}
