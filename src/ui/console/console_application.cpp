#include "ui/console/console_application.h"

#include <algorithm>

#include "base/date_time.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "core/product.h"
#include "core/settings.h"
#include "platform/platform.h"
#include "scan/found_traces.h"
#include "scan/scan_records.h"
#include "scan/unread.h"
#include "signatures/levels.h"
#include "signatures/signature_files.h"
#include "ui/application.h"
#include "ui/wizard/wizard.h"

namespace quarnel {
namespace {

class ConsoleApplication : public ConsoleProgram {
 public:
  ConsoleApplication(Host& host, std::unique_ptr<Platform> platform, bool job)
      : host_(host),
        platform_(std::move(platform)),
        application_(*platform_, host,
                     {.showSplash = false,
                      .runWizard = false,
                      .registersItself = false,
                      .keepsGuard = !job}) {}

  bool Start() override { return application_.Main(); }

  std::vector<ShieldState> Shields() override { return application_.MainForm().engine().Shields(); }

  ScanSummary Scan() override {
    Image& start = application_.MainForm().scan.ImgStartScanMouseMove;
    if (!start.Enabled()) throw RuntimeError(ErrorNumber::kInvalidCall, "a scan runs already");
    if (start.MouseDown) start.MouseDown();
    start.ClickByUser();
    ScanSummary summary = Report();
    // A report names them all.
    constexpr size_t kMostNamed = 5;
    summary.unread.resize(std::min(summary.unread.size(), kMostNamed));
    bool present = false;
    AllSignatureArePresent(platform_->files(), platform_->machine(), present);
    if (!present) summary.problem = "signature files are missing";
    return summary;
  }

  std::optional<RemovalReport> Remove(Removing what) override {
    if (what == Removing::kAllFound) {
      application_.MainForm().engine().recovery().RemoveAllFound();
    } else {
      application_.MainForm().results.cmdRemoveSpywares.ClickByUser();
    }
    return application_.MainForm().engine().recovery().LastRemoval();
  }

  ScanSummary Report() override {
    frmMain& main = application_.MainForm();
    ScanSummary summary{.status = main.engine().scans().Outcome()};
    if (summary.status.empty()) return LastRun();
    TakeTraces(main.results, summary);
    TakeUnread(main.engine().CouldNotRead(), summary);
    return summary;
  }

  std::optional<RemovalReport> LastRemoval() override {
    if (const auto& report = application_.MainForm().engine().recovery().LastRemoval())
      return report;
    return LoadRemovalReport(platform_->files(), platform_->machine());
  }

  bool RestoreFellShort() override {
    return application_.MainForm().engine().recovery().RestoreFellShort();
  }

  std::vector<BrowserSettings::State> BrowserStates() override {
    return application_.MainForm().engine().browserSettings().States();
  }

  std::vector<StartupShield::State> Startups() override {
    return application_.MainForm().engine().startups().States();
  }
  void DecideStartup(const StartupEntry& entry, bool allow) override {
    application_.MainForm().engine().startups().Decide(entry, allow);
  }

  std::vector<std::string> FormNames() override {
    std::vector<std::string> names;
    for (const Forms::Entry& entry : application_.forms().All()) names.emplace_back(entry.name);
    return names;
  }

  bool LoadForm(std::string_view name) override {
    for (const Forms::Entry& entry : application_.forms().All()) {
      if (!EqualText(entry.name, name)) continue;
      entry.touch().Show();
      return true;
    }
    return false;
  }

  void Wizard() override { RunWizard(application_.forms()); }

  bool Quit() override { return application_.MainForm().Close(UnloadMode::kUser); }

  void End() override { host_.EndProcess(); }

 private:
  void TakeTraces(const ResultsPage& results, ScanSummary& summary) {
    const auto levelOf = [this](std::string_view name) {
      return GetThreatLevel(platform_->files(), platform_->machine(), name);
    };
    summary.threats = ThreatsOf(results, FoundTraces(results, platform_->files()), levelOf);
  }

  static void TakeUnread(const Unread& unread, ScanSummary& summary) {
    summary.unreadCount = unread.Count();
    summary.notRun = unread.NotRun();
    summary.notSaved = unread.NotSaved();
    summary.whole = unread.ScanWasWhole();
    for (const UnreadItem& item : unread.Items()) {
      summary.unread.push_back(item.kind + " " + item.name);
    }
  }

  // The last scan of an earlier run, from what it has left on the disk.
  ScanSummary LastRun() {
    const Unread unread = LoadUnread(platform_->files(), platform_->machine());
    ScanSummary summary;
    TakeUnread(unread, summary);
    summary.scanned = !unread.Outcome().empty() || !summary.whole;
    if (unread.Outcome().empty()) return summary;
    const Settings settings(platform_->registry(), std::string(kProductName));
    const std::string start = settings.Get(setting::kScanStart);
    const std::string end = settings.Get(setting::kScanEnd);
    summary.status = "Last scan, ended " + end + ": " + unread.Outcome();
    const auto began = ParseDate(start);
    const auto ended = ParseDate(end);
    if (began && (!ended || *ended < *began)) {
      summary.status += " The one that began " + start + " has not come to its end.";
      summary.whole = false;
    }
    Form form(host_, "LastScan");
    ResultsPage results{form};
    for (const ListRow& row : application_.MainForm().results.lvwIgnoredSpywares.Rows()) {
      results.lvwIgnoredSpywares.Add(row);
    }
    if (!LoadLastScanResults(platform_->files(), platform_->machine(), results)) {
      summary.problem = "the results of the last scan cannot be read";
      summary.whole = false;
    }
    TakeTraces(results, summary);
    return summary;
  }

  Host& host_;
  std::unique_ptr<Platform> platform_;
  Application application_;
};

}  // namespace

std::unique_ptr<ConsoleProgram> MakeConsoleApplication(Host& host, const ProgramCall& call) {
  return std::make_unique<ConsoleApplication>(host, OpenPlatform(call.machineFolder), call.job);
}

}  // namespace quarnel
