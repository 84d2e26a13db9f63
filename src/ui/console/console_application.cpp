#include "ui/console/console_application.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/platform.h"
#include "scan/found_traces.h"
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
    const auto levelOf = [this](std::string_view name) {
      return GetThreatLevel(platform_->files(), platform_->machine(), name);
    };
    ScanSummary summary{
        .status = main.engine().scans().Outcome(),
        .threats = ThreatsOf(main.results, FoundTraces(main.results, platform_->files()), levelOf)};
    summary.scanned = !summary.status.empty();
    const Unread unread =
        summary.scanned ? main.engine().CouldNotRead()
                        : LoadUnread(platform_->files(), platform_->machine()).value_or(Unread());
    summary.unreadCount = unread.Count();
    summary.notRun = unread.NotRun();
    summary.notSaved = unread.NotSaved();
    summary.whole = unread.ScanWasWhole();
    for (const UnreadItem& item : unread.Items()) {
      summary.unread.push_back(item.kind + " " + item.name);
    }
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
  Host& host_;
  std::unique_ptr<Platform> platform_;
  Application application_;
};

}  // namespace

std::unique_ptr<ConsoleProgram> MakeConsoleApplication(Host& host, const ProgramCall& call) {
  return std::make_unique<ConsoleApplication>(host, OpenPlatform(call.machineFolder), call.job);
}

}  // namespace quarnel
