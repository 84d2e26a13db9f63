#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "core/main_window.h"
#include "core/services.h"
#include "options/options_page.h"
#include "protection/advanced_tools_page.h"
#include "protection/startup_locations.h"
#include "protection/startup_verdicts.h"

namespace quarnel {

// Lists the programs that start with the system, keeps the user's verdict on each, takes blocked
// ones out whenever it meets them, and asks about those that are new. A walk step looks at one
// location, so that it takes seven of them to look at all. Up to its fifth tick of the first run
// what it meets is allowed unasked.
class StartupShield {
 public:
  struct Uses {
    AdvancedToolsPage& page;
    const OptionsPage& options;
    Services services;
    MainWindow& window;
  };
  explicit StartupShield(const Uses& uses);

  // Whether this is the first run after the installation, as the store has it.
  void LoadJustAfterInstallation();
  // The first walk step of a run.
  void LoadStartups() { Reload(); }
  void tmrStartup_Timer();

  // One walk step; the list is made anew at its end where that is due. Events are processed
  // between entries, and may lead here again.
  void LoadStartupItems(TreeView& tree, ListView& list);

  // What the last alert was asked for.
  const StartupEntry& Pending() const { return pending_; }

  // Writes a verdict, which alone changes nothing on the machine.
  void Remember(const StartupEntry& entry, std::string_view mark);
  // Takes an entry out of its location; raises what startup::BlockStartup raises.
  void Block(const StartupEntry& entry) { startup::BlockStartup(reach_, entry); }
  // A walk step, after which the list is made anew.
  void Reload();
  // All that the page's buttons do behind their question. Raises as Block.
  void Decide(const StartupEntry& entry, bool allow);

  // An entry as it stands, and what the user has decided about it with this path.
  struct State {
    enum class Verdict { kNone, kAllowed, kBlocked };
    StartupEntry entry;
    Verdict verdict = Verdict::kNone;
    bool present = true;  // false: only the file of verdicts knows it
  };
  // All locations at this moment. Writes, blocks and approves nothing.
  std::vector<State> States();

  // What it has done since the start.
  struct Done {
    size_t walks = 0;
    size_t approved = 0;
    size_t blocked = 0;
    size_t alerts = 0;
  };
  const Done& WhatItDid() const { return done_; }
  // Whether ticks of its timer do anything; they end with their counter.
  bool Watches() const;

 private:
  void EndFirstRun();
  void WalkLocation(const startup::Location& location, TreeView& tree);
  void Meet(TreeView& tree, const TreeNodeRef& parent, const StartupEntry& entry);
  void AskAbout(const StartupEntry& entry);
  bool IsOwn(const StartupEntry& entry) const;
  void Choose(bool allow);
  Answer Ask(std::string_view text) const;

  Uses u_;
  startup::Reach reach_;
  StartupVerdicts verdicts_;
  StartupEntry pending_;
  bool justAfterInstallation_ = true;
  // The list is to be made anew at the end of the next walk step.
  bool bStartupBaselineDone_ = false;
  size_t step_ = 0;
  int16_t ticks_ = 0;
  Done done_;
};

}  // namespace quarnel
