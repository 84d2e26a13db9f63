#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/host.h"
#include "engine/shields.h"
#include "protection/browser_settings.h"
#include "protection/startup_shield.h"
#include "recovery/removal_report.h"
#include "ui/console/scan_summary.h"

namespace quarnel {

// What a removal takes: what is ticked in the results, as a click on its button does, or all that
// the scan found, whatever the tree shows of it.
enum class Removing { kTicked, kAllFound };

// The program behind the console, as far as its forms and controls do not tell: how it starts, how
// it ends, and the everyday jobs in one word. Any of these may run modal forms, show message boxes
// and end the process.
class ConsoleProgram {
 public:
  virtual ~ConsoleProgram() = default;
  // Starts the program; false when another instance runs already. Opens no wizard.
  virtual bool Start() = 0;
  // A whole scan, as a click on its button runs it, and what it found.
  virtual ScanSummary Scan() = 0;
  // A removal, and what it did; nothing when a box said why there is nothing to do.
  virtual std::optional<RemovalReport> Remove(Removing what) = 0;
  // What the last scan found, as it stands now; of a scan by an earlier run, what it could not
  // read.
  virtual ScanSummary Report() = 0;
  // What the last removal did, also one by an earlier run; nothing when there was none.
  virtual std::optional<RemovalReport> LastRemoval() = 0;
  // How the guards stand, and what they did since the start.
  virtual std::vector<ShieldState> Shields() = 0;
  // Whether a restore of this run left something behind that it was to bring back.
  virtual bool RestoreFellShort() = 0;
  // The guarded settings of the browser as they stand. Writes nothing.
  virtual std::vector<BrowserSettings::State> BrowserStates() = 0;
  // What starts with the system, and the verdicts on it. Writes nothing.
  virtual std::vector<StartupShield::State> Startups() = 0;
  // Allows or blocks one of these, as the page's buttons do, without a question.
  virtual void DecideStartup(const StartupEntry& entry, bool allow) = 0;
  // The names of all forms, loaded or not.
  virtual std::vector<std::string> FormNames() = 0;
  // Loads the form of this name, letter case folded, and shows it; false when there is none.
  virtual bool LoadForm(std::string_view name) = 0;
  // The pages of the setup wizard, as a modal form.
  virtual void Wizard() = 0;
  // Closes the program as its user would, with all questions; false when it stays open.
  virtual bool Quit() = 0;
  // Leaves the program without any question, whatever runs. The process ends after it.
  virtual void End() = 0;
};

// What a program is made for.
struct ProgramCall {
  std::string machineFolder;  // empty: the usual one
  // One everyday job and no more: nothing that is due by the clock joins it.
  bool job = false;
};

// Makes the program on a host. RuntimeError when the machine cannot be opened.
using MakeProgram =
    std::function<std::unique_ptr<ConsoleProgram>(Host& host, const ProgramCall& call)>;

}  // namespace quarnel
