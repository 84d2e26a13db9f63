// A removal runs inside one handler and lets events be processed between its pieces of work, so
// timers tick and the window repaints meanwhile. The order of its phases is the design: the ticks
// reach the flat lists first, everything is backed up while it still stands, the registry is
// cleaned before any file is touched, and the trees are pruned in the end.

#include "recovery/removal.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/date_time.h"
#include "base/text.h"
#include "core/messages.h"
#include "recovery/removal_words.h"
#include "scan/scan_records.h"

namespace quarnel {
namespace {

constexpr std::string_view kLabel = "cmdRemoveSpywares_Click in frmMain";

void TakeRow(ListView& list, size_t expected, std::string_view text) {
  // Handlers that ran meanwhile may have changed the list.
  if (expected < list.Count() && list.At(expected).text == text) return list.Remove(expected);
  if (const auto row = list.FindText(text)) list.Remove(*row);
}

}  // namespace

Removal::Removal(const Uses& uses)
    : u_(uses),
      fileRemoval_({.files = u_.files,
                    .processes = u_.processes,
                    .machine = u_.machine,
                    .settings = u_.settings,
                    .host = u_.host,
                    .log = u_.log}),
      registryCleaning_({.page = u_.page,
                         .results = u_.results,
                         .registry = u_.registry,
                         .host = u_.host,
                         .log = u_.log}) {}

void Removal::cmdRemoveSpywares_Click() {
  lastReport_.reset();
  Reporting(u_.log, kLabel, [&] {
    if (MayStart()) Remove();
  });
}

void Removal::RemoveAllFound() {
  lastReport_.reset();
  Reporting(u_.log, kLabel, [&] {
    if (TellsThatScanRuns()) return;
    TickAllFound();
    Remove();
  });
}

void Removal::TickAllFound() {
  for (const TreeNodeRef& node : u_.results.vbatvwResults.InOrder()) {
    u_.results.vbatvwResults.SetChecked(*node, true);
  }
  for (ListView* list : {&u_.results.lvwFilesToBeDeleted, &u_.results.lvwRegistryEntriesFound,
                         &u_.results.lvwTrackingCookieObjectrecognized}) {
    for (size_t i = 0; i < list->Count(); ++i) list->SetChecked(i, true);
  }
}

bool Removal::TellsThatScanRuns() {
  if (!u_.scan.ImgStopScanMouseMove.Visible()) return false;
  Messages(u_.host, u_.settings).Inform("Please wait while [Scanning Process] is running.");
  return true;
}

bool Removal::MayStart() {
  if (TellsThatScanRuns()) return false;
  const Messages messages(u_.host, u_.settings);
  if (u_.results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Empty()) {
    messages.Inform("There is no Spyware/Adware in the results list.");
    return false;
  }
  const std::vector<TreeNodeRef> nodes = u_.results.vbatvwResults.InOrder();
  if (std::none_of(nodes.begin(), nodes.end(),
                   [](const TreeNodeRef& node) { return node->checked; })) {
    messages.Inform("Nothing selected.");
    return false;
  }
  return true;
}

void Removal::Remove() {
  anyFileHandled_ = false;
  // The results of a stopped scan are removed as those of any other.
  u_.flags.scanStopRequested = false;
  PropagateTicks();
  u_.page.lblDeletingCaption.SetCaption("");
  u_.page.facts.measured = false;
  Show(u_.page);
  RemovalRecord record({.results = u_.results,
                        .files = u_.files,
                        .registry = u_.registry,
                        .processes = u_.processes},
                       FormatDate(u_.host.clock().Now(), "yyyy-mm-dd hh:nn:ss"));
  try {
    // A failed backup does not stop the removal; the report tells of it.
    if (u_.results.chkCreateRestore.Checked()) record.NoteBackup(u_.backup.BackupSpyware());
    CloseBrowsers();
    u_.window.SelectPage(Tab::kScan);
    u_.page.facts.told = u_.page.facts.measured = true;
    Show(u_.page);
    for (const auto& [trace, status] : registryCleaning_.CleanRegistryEntries()) {
      record.NoteRefusal(trace, status);
    }
    DeleteTraces(record);
  } catch (const RuntimeError& error) {
    Keep(record.Conclude("ended early: " + error.Description()));
    throw;
  }
  // Before the prompt for a restart, which may be the last that happens.
  Keep(record.Conclude(""));
  PruneTrees();
  RebuildPage();
  SaveLastScanResults(u_.files, u_.machine, u_.results, u_.unread);
  if (!u_.results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Empty() && anyFileHandled_) {
    u_.window.AskToRestart();
  }
  ShowEnd();
}

void Removal::PropagateTicks() {
  TreeView& tree = u_.results.vbatvwResults;
  ProgressBar& bar = u_.page.pbrRemoveSpyware;
  // The first value is 9, however few nodes there are.
  constexpr double kFirstValue = 9;
  bar.SetMin(0);
  bar.SetMax(static_cast<double>(tree.Count() + 1));
  bar.SetValue(kFirstValue);
  u_.page.facts.measured = true;
  Show(u_.page);
  ListView& threats = u_.results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
  for (const TreeNodeRef& node : tree.InOrder()) {
    u_.host.DoEvents();
    u_.page.lblDeletingCaption.SetCaption("Analyzing Spyware/Adware file entries...");
    bar.SetValue(bar.Value() + 1);
    if (!node->checked) continue;
    if (node->parent) {
      u_.model.SelectUnselectRegsitry(*node);
      u_.model.SelectUnselectFiles(*node, u_.results.lvwFilesToBeDeleted);
      u_.model.SelectUnselectFiles(*node, u_.results.lvwTrackingCookieObjectrecognized);
    } else if (const auto row = threats.FindText(WithoutPrefixes(node->text))) {
      threats.SetChecked(*row, node->checked);
    }
  }
}

void Removal::CloseBrowsers() {
  if (u_.settings.Get(setting::kRemovalShowAlways)) u_.window.AskToCloseBrowser();
  if (u_.settings.Get(setting::kRemovalCloseAllIE)) CloseBrowserWindows(u_.desktop);
}

// Files are not tied to their threat: the first turn handles them all, and the later ones find
// none.
void Removal::DeleteTraces(RemovalRecord& record) {
  const ListView& threats = u_.results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
  const size_t count = threats.Count();
  ProgressBar& bar = u_.page.pbrRemoveSpyware;
  for (size_t i = 0; i < count; ++i) {
    if (threats.At(i).text == kTrackingObject) {
      u_.cookies.DeleteSelectedCookies(u_.results.lvwTrackingCookieObjectrecognized, true);
    }
    bar.SetMin(0);
    bar.SetMax(static_cast<double>(u_.results.lvwFilesToBeDeleted.Count() + 1));
    u_.page.facts.measured = true;
    Show(u_.page);
    u_.page.lblDeletingCaption.SetCaption("Cleaning Spyware/Adware file entries...");
    bar.SetValue(0);
    DeleteFiles(record);
  }
}

bool Removal::IsPending(const ListRow& row) const {
  const ListView& safe = u_.results.lvwIgnoredSpywares;
  return row.checked && (safe.Empty() || !FindName(safe, row.text));
}

// Walks upwards until a whole walk finds nothing to do. Rows below one that was handled have been
// passed over already, so the walk goes on from there.
void Removal::DeleteFiles(RemovalRecord& record) {
  ListView& list = u_.results.lvwFilesToBeDeleted;
  ProgressBar& bar = u_.page.pbrRemoveSpyware;
  bar.SetValue(bar.Value() + 1);
  bool found = true;
  while (found) {
    found = false;
    for (size_t j = list.Count(); j-- > 0;) {
      u_.host.DoEvents();
      if (j >= list.Count() || !IsPending(list.At(j))) continue;
      const std::string path = list.At(j).text;
      FileOutcome outcome;
      anyFileHandled_ = true;
      u_.page.lblDeletingCaption.AppendCaption(" -" + path);
      if (EndsWithText(path, ".dll") || EndsWithText(path, ".ocx")) {
        u_.scan.lblStatus.SetCaption(path);
      }
      const bool deleted = fileRemoval_.DeleteByExtension(path, outcome);
      TakeRow(list, j, path);
      if (!deleted) fileRemoval_.MoveThisFile(path, outcome);
      record.NoteFile(path, std::move(outcome));
      bar.SetValue(bar.Value() + 1);
      found = true;
    }
  }
}

// Children stand behind their root, so that one walk from the end prunes both. A row of the flat
// tree goes for each node that goes, the first one with its text.
void Removal::PruneTrees() {
  TreeView& tree = u_.results.vbatvwResults;
  ItemTree& items = u_.results.sfttvwResults;
  std::vector<TreeNodeRef> nodes = tree.InOrder();
  std::map<std::string, size_t, std::less<>> pruned;
  for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
    const TreeNodeRef& ref = *node;
    if (!ref->checked || !ref->children.empty()) continue;
    if (FindText(ref->text, kIgnoredPrefix) != std::string_view::npos) continue;
    ++pruned[ref->text];
    tree.Remove(ref);
  }
  std::vector<size_t> going;
  for (size_t i = 0; i < items.Count(); ++i) {
    const auto text = pruned.find(items.Items()[i].Cell(0));
    if (text == pruned.end() || text->second == 0) continue;
    --text->second;
    going.push_back(i);
  }
  for (auto index = going.rbegin(); index != going.rend(); ++index) items.Remove(*index);
}

void Removal::RebuildPage() {
  u_.results.vbatvwResults.Refresh();
  u_.page.facts.told = true;
  Show(u_.page);
  u_.scan.lblStatus.SetCaption("");
  u_.scan.lblMemoryInfected.SetCaption("0");
  u_.results.lbltracesFound.SetCaption("0");
  u_.model.RecomputeCounters();
  if (u_.results.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Empty()) {
    u_.results.chkSelectAllDetectedSpywares.SetValue(0);
  }
  const std::string& title = u_.settings.ApplicationName();
  u_.page.lblDeletingCaption.SetCaption(title + " - " + title);
}

void Removal::ShowEnd() {
  u_.page.facts = {.measured = false, .told = false, .ended = true};
  Show(u_.page);
  ResultsFacts& results = u_.results.facts;
  results.flatTree = results.leftPane = results.rightPane = false;
  Show(u_.results);
  u_.page.lblScanSummary.SetCaption("This completes the Quarnel threat check process");
  u_.page.lblScanSummary.SetBold(false);
  CountThreatLevels();
  ShowReport();
  u_.page.lblRemoveSummaryMessage.SetCaption(
      "Please be sure to schedule regular updates and scans from \xE2\x80\x98Scheduler\xE2\x80\x99 "
      "to ensure your system remains Spyware Free");
}

void Removal::ShowReport() {
  ListView& list = u_.page.lvwRemovalReport;
  Label& state = u_.page.lblRestorePointState;
  list.Clear();
  const RemovalReport report = lastReport_.value_or(RemovalReport());
  const bool incomplete = RestorePointIsIncomplete(report);
  u_.page.facts.incomplete = incomplete;
  Show(u_.page);
  state.SetForeColour(Colour::kRed);
  state.SetCaption(
      "The restore point is incomplete: what the list names as not saved cannot be brought back.");
  if (incomplete) {
    for (const BackupFailure& failure : report.backup->failures) {
      list.Add({.text = failure.what, .subItems = {std::string(kUnsavedOutcome), failure.reason}});
    }
  }
  for (const bool alarming : {true, false}) {
    for (const ReportedTrace& trace : report.traces) {
      if (IsAlarming(trace.fate) != alarming) continue;
      list.Add({.text = trace.trace, .subItems = {std::string(NameOf(trace.fate)), trace.detail}});
    }
  }
}

void Removal::cmdCopyRemoval_Click() {
  Reporting(u_.log, "cmdCopyRemoval_Click in frmMain", [&] {
    if (lastReport_) u_.host.SetClipboardText(ReportText(*lastReport_));
    Messages(u_.host, u_.settings).Tell("Copied to Clipboard");
  });
}

void Removal::CountThreatLevels() {
  Reporting(u_.log, "CountThreatLevels in frmMain", [&] {
    auto& counts = u_.page.lblThreatLevelCount;
    for (Label& count : counts) count.SetCaption("0");
    for (const TreeNodeRef& node : u_.results.vbatvwResults.InOrder()) {
      const std::string level =
          node->columns.size() < 2 ? std::string() : Replace(node->columns[1], "\x14", "");
      const int32_t number = ValLong(level);
      if (number < 1) continue;
      if (static_cast<size_t>(number) > counts.size()) {
        throw RuntimeError(ErrorNumber::kSubscriptOutOfRange);
      }
      Label& count = counts[static_cast<size_t>(number) - 1];
      count.SetCaption(std::to_string(ValLong(count.Caption()) + 1));
    }
    int32_t left = 0;
    for (const Label& count : counts) left += ValLong(count.Caption());
    Label& message = u_.page.lblScanSummaryMessage;
    message.SetCaption(left > 0 ? "YOUR PC IS CLEAR OF UNWANTED SPYWARE"
                                : "YOUR PC IS NOW FREE OF ALL SPYWARE");
    message.SetBold(true);
    message.SetForeColour(Colour::kRed);
  });
}

void Removal::Keep(RemovalReport report) {
  lastReport_ = std::move(report);
  try {
    SaveRemovalReport(u_.files, u_.machine, *lastReport_);
  } catch (const RuntimeError& error) {
    u_.log.NoteInPassing("SaveRemovalReport", error);
  }
}

}  // namespace quarnel
