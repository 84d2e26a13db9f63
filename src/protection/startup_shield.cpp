#include "protection/startup_shield.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "core/paths.h"
#include "core/product.h"
#include "platform/names.h"
#include "protection/startup_list.h"

namespace quarnel {
namespace {

constexpr std::string_view kUpdateRuns = "RunUpdates";

std::string VerdictOn(const StartupEntry& entry, std::string_view mark) {
  return std::string(entry.path).append(mark);
}

}  // namespace

StartupShield::StartupShield(const Uses& uses)
    : u_(uses),
      reach_{u_.services.platform.files(), u_.services.platform.registry(),
             u_.services.platform.machine(), u_.services.platform.shell()},
      verdicts_(reach_.files, reach_.machine, u_.services.settings.ApplicationName()) {
  const auto wire = [this](Label& label, std::string_view name, bool allow) {
    label.Click = [this, name, allow] { Reporting(u_.services.log, name, [&] { Choose(allow); }); };
  };
  wire(u_.page.lblAllowThisStartupItem, "lblAllowThisStartupItem_Click", true);
  wire(u_.page.lblBlockThisStartupItem, "lblBlockThisStartupItem_Click", false);
}

void StartupShield::LoadJustAfterInstallation() {
  justAfterInstallation_ = u_.services.settings.Get(setting::kJustAfterInstallation);
}

// ---- the walk ----------------------------------------------------------------------------------

void StartupShield::tmrStartup_Timer() {
  constexpr int16_t kFirstTicks = 5;
  if (!Watches()) return;
  ++ticks_;
  if (!u_.options.chkStartupShield.Checked()) return;
  if (ticks_ >= kFirstTicks) {
    justAfterInstallation_ = false;
    // A store that cannot be written must not keep the walk from its work.
    IgnoringErrors([&] { EndFirstRun(); });
    bStartupBaselineDone_ = true;
  }
  LoadStartupItems(u_.page.vbatvwStartup, u_.page.lvwStartup);
}

void StartupShield::EndFirstRun() {
  Settings& settings = u_.services.settings;
  if (settings.Has(setting::kJustAfterInstallation.place) &&
      !settings.Get(setting::kJustAfterInstallation)) {
    return;
  }
  settings.Save(setting::kJustAfterInstallation, false);
}

// The counter is one of 16 bits: the tick that would overflow it fails, and so do all later ones.
bool StartupShield::Watches() const { return ticks_ < std::numeric_limits<int16_t>::max(); }

void StartupShield::Reload() {
  bStartupBaselineDone_ = true;
  LoadStartupItems(u_.page.vbatvwStartup, u_.page.lvwStartup);
}

void StartupShield::LoadStartupItems(TreeView& tree, ListView& list) {
  ++done_.walks;
  tree.Clear();
  tree.Refresh();
  startup::SetUpColumns(tree);
  const startup::Location& location = startup::Locations()[step_];
  step_ = (step_ + 1) % startup::kWalked;
  WalkLocation(location, tree);
  const std::vector<TreeNodeRef> roots = tree.Roots();
  for (const TreeNodeRef& root : roots) {
    if (root->children.empty()) tree.Remove(root);
  }
  if (!bStartupBaselineDone_) return;
  bStartupBaselineDone_ = false;
  verdicts_.Open();
  startup::AddVerdicts(tree, verdicts_.All());
  startup::ShowTree(tree, list);
}

// An entry whose block fails ends the walk of its location, as one without a name does.
void StartupShield::WalkLocation(const startup::Location& location, TreeView& tree) {
  const TreeNodeRef parent = tree.AddRoot(location.label, location.label);
  tree.SetExpanded(*parent, true);
  verdicts_.Open();
  Reporting(u_.services.log, "EnumerateRegKeyValues", [&] {
    startup::Walk(reach_, location, [&](const std::string& name, const std::string& path) {
      Meet(tree, parent, {.name = name, .path = path, .section = std::string(location.label)});
      u_.services.host.DoEvents();
      // A walk step inside these events has made the tree its own.
      return parent->tree == &tree;
    });
  });
}

void StartupShield::Meet(TreeView& tree, const TreeNodeRef& parent, const StartupEntry& entry) {
  const TreeNodeRef node = startup::AddEntry(tree, parent, entry);
  const std::string allowed = VerdictOn(entry, verdict::kAllowed);
  const std::string blocked = VerdictOn(entry, verdict::kBlocked);
  const std::string known = verdicts_.Of(entry.section, entry.name);
  if (justAfterInstallation_) {
    if (known != allowed) ++done_.approved;
    verdicts_.Set(entry.section, entry.name, allowed);
    startup::ShowVerdict(tree, *node, allowed, Colour::kGreen);
    if (entry.section == startup::kFolder) bStartupBaselineDone_ = true;
  } else if (known == blocked) {
    startup::ShowVerdict(tree, *node, blocked, Colour::kRed);
    Block(entry);
    ++done_.blocked;
  } else if (known == allowed) {
    startup::ShowVerdict(tree, *node, allowed, Colour::kGreen);
  } else if (!entry.path.empty() && !IsOwn(entry)) {
    AskAbout(entry);
  }
}

bool StartupShield::IsOwn(const StartupEntry& entry) const {
  return EqualNames(
      entry.path,
      GetPathWithSlash(reach_.machine.ProgramFolder()).append(kExecutableName).append(".exe"));
}

// Whether an alert is wanted is the option's about the browser, of which the folder sees the box
// and the registry what is stored.
void StartupShield::AskAbout(const StartupEntry& entry) {
  pending_ = entry;
  const Settings& settings = u_.services.settings;
  const bool inFolder = entry.section == startup::kFolder;
  const int wanted = inFolder ? u_.options.chkDisplayHijakRestoreAlerts.Value()
                              : settings.Get(setting::kDisplayHijakRestoreAlerts);
  if (wanted != 1) return;
  if (!inFolder && settings.Get(setting::kIsFirstTimeAfterSetup) == kUpdateRuns) {
    startup::AllowStartup(reach_, pending_);
    return;
  }
  ++done_.alerts;
  u_.window.AlertStartup();
}

// ---- verdicts ----------------------------------------------------------------------------------

void StartupShield::Remember(const StartupEntry& entry, std::string_view mark) {
  verdicts_.Open();
  verdicts_.Set(entry.section, entry.name, VerdictOn(entry, mark));
}

void StartupShield::Decide(const StartupEntry& entry, bool allow) {
  Remember(entry, allow ? verdict::kAllowed : verdict::kBlocked);
  if (allow) {
    startup::AllowStartup(reach_, entry);
  } else {
    ListView& list = u_.page.lvwStartup;
    if (const auto row = startup::RowOf(list, entry)) {
      list.SetLook(*row, {.colour = Colour::kRed});
    }
    Block(entry);
  }
  Reload();
}

Answer StartupShield::Ask(std::string_view text) const {
  return u_.services.host.MsgBox({.text = std::string(text),
                                  .title = "Startup Manager",
                                  .icon = MessageIcon::kQuestion,
                                  .buttons = MessageButtons::kYesNo});
}

// Without a choice the first row counts as chosen, which is one of a location.
void StartupShield::Choose(bool allow) {
  const ListView& list = u_.page.lvwStartup;
  if (list.Empty()) return;
  const ListRow& row = list.At(list.SelectedRow().value_or(0));
  if (row.look.bold) {
    Ask("Please select the sub item from the list.");
    return;
  }
  const StartupEntry entry = startup::EntryOf(row);
  const Answer answer = Ask(allow ? "Are you sure you would like to allow this Startup program?"
                                  : "Are you sure you would like to block this Startup program?");
  if (answer == Answer::kYes) Decide(entry, allow);
}

std::vector<StartupShield::State> StartupShield::States() {
  std::vector<State> states;
  const auto verdictOf = [](const StartupEntry& entry, std::string_view text) {
    if (text == VerdictOn(entry, verdict::kAllowed)) return State::Verdict::kAllowed;
    if (text == VerdictOn(entry, verdict::kBlocked)) return State::Verdict::kBlocked;
    return State::Verdict::kNone;
  };
  verdicts_.Open();
  for (const startup::Location& location : startup::Locations().first(startup::kWalked)) {
    startup::Walk(reach_, location, [&](const std::string& name, const std::string& path) {
      const StartupEntry entry{.name = name, .path = path, .section = std::string(location.label)};
      states.push_back({entry, verdictOf(entry, verdicts_.Of(entry.section, name))});
      return true;
    });
  }
  for (StartupEntry& entry : verdicts_.All()) {
    const std::string text = std::exchange(entry.path, PathOfVerdict(entry.path));
    const bool stands = std::any_of(states.begin(), states.end(), [&](const State& state) {
      return state.entry.section == entry.section && EqualNames(state.entry.name, entry.name);
    });
    if (!stands) states.push_back({entry, verdictOf(entry, text), false});
  }
  return states;
}

}  // namespace quarnel
