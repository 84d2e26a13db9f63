// What the window costs a scan: 100,000 signatures, or as many as given, of keys and files, of
// which 100 exist, by turns with a front that shows nothing and with the window, on the display
// that it is given; and how soon the window answers a click on Stop, where the scan is long enough
// for one.
//
//   tools/with-display build/release/bin/window-scan-bench [ROUNDS [SIGNATURES]]

#include <wx/uiaction.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <optional>
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
constexpr long kSignatures = 100000;
constexpr int kFinds = 100;

// The window, whose boxes answer themselves. Once `stopAfter` of a scan has passed its button Stop
// is clicked with the mouse; `answered` is how long its question took to come.
class BenchHost : public WxHost {
 public:
  using WxHost::WxHost;

  std::optional<Milliseconds> stopAfter;
  std::vector<double> answered;

  void ScanStarts() {
    start_ = steady_clock::now();
    clicked_ = false;
  }
  Answer MsgBox(const MessageBox& box) override {
    if (box.buttons != MessageButtons::kYesNo) return Answer::kOk;
    const std::chrono::duration<double, std::milli> took = steady_clock::now() - click_;
    answered.push_back(took.count());
    return Answer::kYes;
  }

 protected:
  void ProcessFrontEvents(Milliseconds now) override {
    if (stopAfter && !clicked_ && steady_clock::now() - start_ > *stopAfter) ClickStop();
    WxHost::ProcessFrontEvents(now);
  }

 private:
  void ClickStop() {
    const wxWindow* button = wxWindow::FindWindowByName("ImgStopScanMouseMove");
    if (button == nullptr || !button->IsShownOnScreen()) return;
    clicked_ = true;
    const wxSize size = button->GetSize();
    wxUIActionSimulator mouse;
    click_ = steady_clock::now();
    mouse.MouseMove(button->GetScreenPosition() + wxPoint(size.x / 2, size.y / 2));
    mouse.MouseClick();
  }

  steady_clock::time_point start_;
  steady_clock::time_point click_;
  bool clicked_ = false;
};

// Every second signature is one of the registry.
void Prepare(Platform& platform, long signatures) {
  const std::string folder = GetFolder(platform.machine(), kProgramFiles).front();
  SignatureSources sources;
  for (long i = 0; i < signatures; ++i) {
    const std::string number = std::to_string(i);
    const bool exists = i / 2 % (signatures / kFinds) == 0;
    if (i % 2 == 0) {
      const std::string key =
          Join({"SOFTWARE\\VENDOR ", std::to_string(i % 700), "\\", number}, "");
      sources.registry += Join({"Any,Threat ", number, ",1,2,", key, ",,\n"}, "");
      if (exists) {
        RegCreateKeyValue(platform.registry(), hive::kLocalMachine, key, "Name", std::string("x"));
      }
    } else {
      const std::string name = Join({"File", number, ".txt"}, "");
      sources.files += Join({"Any,Threat ", number, ",1,31,", name, ",,7\n"}, "");
      if (exists) WriteWholeFile(platform.files(), folder + name, "x");
    }
  }
  for (const CompiledFile& file : CompileSet(sources).files) {
    WriteWholeFile(platform.files(), DataFolder(platform.machine()) + file.name, file.bytes);
  }
}

struct Cost {
  double wall = 0;  // milliseconds
  double work = 0;  // of the processor
};

Cost Scan(Application& application) {
  const auto start = steady_clock::now();
  const std::clock_t work = std::clock();
  application.MainForm().scan.ImgStartScanMouseMove.ClickByUser();
  const std::chrono::duration<double, std::milli> took = steady_clock::now() - start;
  if (application.MainForm().results.txtAdwareSpyware.Caption() != std::to_string(kFinds)) {
    std::cerr << "not all finds were found\n";
    std::exit(1);
  }
  return {took.count(), 1000.0 * static_cast<double>(std::clock() - work) / CLOCKS_PER_SEC};
}

double Median(const std::vector<Cost>& costs, double Cost::*member) {
  std::vector<double> values;
  values.reserve(costs.size());
  for (const Cost& cost : costs) values.push_back(cost.*member);
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Lets what a scan has left on the screen be painted: the next one shall not pay for it.
void Rest(wxEventLoopBase& loop) {
  constexpr auto kRest = std::chrono::milliseconds(600);
  for (const auto start = steady_clock::now(); steady_clock::now() - start < kRest;) {
    loop.YieldFor(wxEVT_CATEGORY_ALL);
    wxMilliSleep(1);
  }
}

// Clicks Stop at moments that lie differently to the window's own rhythm.
void MeasureStop(BenchHost& host, frmMain& form, wxEventLoopBase& loop) {
  constexpr int kStops = 15;
  for (int i = 0; i < kStops; ++i) {
    Rest(loop);
    host.stopAfter = Milliseconds(600 + i * 7);
    host.Act([&] {
      host.ScanStarts();
      form.scan.ImgStartScanMouseMove.ClickByUser();
    });
  }
  host.stopAfter.reset();
  if (host.answered.empty()) {
    std::puts("the scan is too short to be stopped");
  } else {
    std::sort(host.answered.begin(), host.answered.end());
    std::printf("Stop is answered in %.0f ms, at the latest in %.0f ms\n",
                host.answered[host.answered.size() / 2], host.answered.back());
  }
}

int Measure(long rounds, long signatures) {
  const TemporaryMachine machine;
  const std::unique_ptr<Platform> platform = OpenPlatform(machine.Folder());
  Prepare(*platform, signatures);
  RealClock clock;
  IdleHost idle(clock);
  Application without(*platform, idle, {.showSplash = false, .runWizard = false});
  without.Main();

  BenchHost host([](const std::string&) { return std::string(); });
  Application with(*platform, host, {.showSplash = false, .runWizard = false});
  std::vector<Cost> plain;
  std::vector<Cost> shown;
  wxGUIEventLoop loop;
  wxTheApp->CallAfter([&] {
    host.Act([&] { with.MainForm().Show(); });
    for (long i = 0; i <= rounds; ++i) {
      Rest(loop);
      const Cost idleCost = Scan(without);
      host.Act([&] { shown.push_back(Scan(with)); });
      plain.push_back(idleCost);
      std::printf("%6.0f ms, %6.0f of work; with the window %6.0f ms, %6.0f of work\n",
                  idleCost.wall, idleCost.work, shown.back().wall, shown.back().work);
    }
    MeasureStop(host, with.MainForm(), loop);
    loop.ScheduleExit();
  });
  loop.Run();
  // The first round fills caches.
  plain.erase(plain.begin());
  shown.erase(shown.begin());
  std::printf("ratio of time %.3f, of work %.3f\n",
              Median(shown, &Cost::wall) / Median(plain, &Cost::wall),
              Median(shown, &Cost::work) / Median(plain, &Cost::work));
  return 0;
}

}  // namespace
}  // namespace quarnel

int main(int argc, char** argv) {
  constexpr long kRounds = 5;
  const auto number = [&](int place, long usual) {
    const long given = argc > place ? std::strtol(argv[place], nullptr, 10) : 0;
    return given > 0 ? given : usual;
  };
  wxApp::SetInstance(new wxApp);
  int own = 1;
  if (!wxEntryStart(own, argv)) return 1;
  wxIdleEvent::SetMode(wxIDLE_PROCESS_SPECIFIED);
  wxUpdateUIEvent::SetMode(wxUPDATE_UI_PROCESS_SPECIFIED);
  wxTheApp->SetExitOnFrameDelete(false);
  const int result = quarnel::Measure(number(1, kRounds), number(2, quarnel::kSignatures));
  wxEntryCleanup();
  return result;
}
