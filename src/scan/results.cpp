#include "scan/results.h"

#include "base/text.h"
#include "platform/names.h"

namespace quarnel {
namespace {

// The row of a threat in the flat tree: the roots of both trees carry the same text.
std::optional<size_t> ThreatItem(const ItemTree& items, std::string_view name) {
  for (size_t i = 0; i < items.Count(); ++i) {
    if (items.Items()[i].level == 0 && items.Items()[i].Cell(0) == name) return i;
  }
  return std::nullopt;
}

// The hourglass for as long as it lives.
class BusyPointer {
 public:
  explicit BusyPointer(Host& host) : host_(host) { host_.SetMousePointer(Pointer::kHourglass); }
  ~BusyPointer() { host_.SetMousePointer(Pointer::kDefault); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  Host& host_;
};

// Selects the row of a threat; of one whose rows stand for traces, the first of these.
void SelectThreat(ListView& threats, std::string_view name) {
  const auto row = threats.FindText(name);
  if (const auto found = row ? row : threats.FindSubItem(name)) threats.Select(*found);
}

}  // namespace

std::string WithoutPrefixes(std::string_view text) {
  return Replace(Replace(text, kIgnoredPrefix, ""), kFoundPrefix, "");
}

Results::Results(ResultsPage& page, std::function<int(std::string_view)> levelOf, Host& host,
                 ErrorLog& log)
    : page_(page), levelOf_(std::move(levelOf)), host_(host), log_(log) {}

bool Results::IsSpywareIgnored(std::string_view trace, std::string_view, std::string_view) const {
  return FindName(page_.lvwIgnoredSpywares, trace).has_value();
}

void Results::RecomputeCounters() {
  const size_t registry = page_.lvwRegistryEntriesFound.Count();
  const size_t cookies = page_.lvwTrackingCookieObjectrecognized.Count();
  const size_t files = page_.lvwFilesToBeDeleted.Count();
  page_.txtAdwareSpyware.SetCaption(std::to_string(registry + cookies + files));
  page_.lblRegistryInfected.SetCaption(std::to_string(registry));
  page_.lblFilesFolderInfected.SetCaption(std::to_string(files));
}

// The number, one blank, and the level's text, which is empty for every level.
std::string Results::LevelColumn(std::string_view name) const {
  return std::to_string(levelOf_(name)) + " ";
}

// The lists fold letter case, so the roots that go with them are found so, too.
TreeNodeRef Results::RootOf(std::string_view name) const {
  if (TreeNodeRef root = page_.vbatvwResults.Find(name)) return root;
  for (const TreeNodeRef& root : page_.vbatvwResults.Roots()) {
    if (EqualText(root->key, name)) return root;
  }
  return nullptr;
}

// The root of a new threat, in both trees. A name in another letter case is the same threat; a root
// under the very name raises.
TreeNodeRef Results::AddThreatRoot(const Threat& threat) {
  if (TreeNodeRef twin = RootOf(threat.name); twin && twin->key != threat.name) return twin;
  TreeNodeRef root = page_.vbatvwResults.AddRoot(threat.name, threat.name);
  root->image = root->selectedImage = 1;
  page_.vbatvwResults.SetBold(*root, true);
  page_.vbatvwResults.SetExpanded(*root, true);
  page_.vbatvwResults.SetColumn(*root, 1, threat.typeName);
  page_.vbatvwResults.SetColumn(*root, 2, LevelColumn(threat.name));
  const size_t item = page_.sfttvwResults.Add(threat.name);
  page_.sfttvwResults.SetBold(item, true);
  page_.sfttvwResults.SetExpanded(item, true);
  page_.sfttvwResults.SetCell(item, 2, threat.typeName);
  return root;
}

void Results::AddTraceChild(const TreeNodeRef& root, std::string_view prefix, const Find& find) {
  const std::string text = std::string(prefix) + find.text;
  // The count makes equal traces of one threat distinct keys.
  const std::string key = "K" + std::to_string(page_.vbatvwResults.Count()) + "[[]]" +
                          (find.keyHasPrefix ? text : find.text);
  const TreeNodeRef child = page_.vbatvwResults.AddChild(root, key, text);
  child->image = child->selectedImage = 1;
  if (find.oncePerTrace && page_.sfttvwResults.FindText(std::string(kIgnoredPrefix) + find.text)) {
    return;
  }
  if (const auto threat = ThreatItem(page_.sfttvwResults, root->text)) {
    const size_t item = page_.sfttvwResults.AddBelow(*threat, text);
    page_.sfttvwResults.SetExpanded(item, true);
  }
}

// Shows a trace under its root as found, or as ignored unless the user hides those.
void Results::ShowTrace(const TreeNodeRef& root, const Find& find, bool ignored) {
  if (!ignored) {
    AddTraceChild(root, kFoundPrefix, find);
  } else if (!page_.chkDoNotShowIgnoredItem.Checked()) {
    AddTraceChild(root, kIgnoredPrefix, find);
  }
  // The first find of a threat shows at once.
  if (root->children.size() == 1) page_.vbatvwResults.Refresh();
}

bool Results::IsKnown(const Find& find, std::string_view key) const {
  return find.knownBy == KnownBy::kFileRows
             ? page_.lvwFilesToBeDeleted.FindSubItem(key).has_value()
             : page_.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.FindText(key).has_value();
}

void Results::AddRow(const Find& find) {
  ListRow row = std::visit([](const auto& trace) { return trace.Row(); }, find.trace);
  if (std::holds_alternative<FileTrace>(find.trace)) {
    page_.lvwFilesToBeDeleted.Add(std::move(row));
  } else if (std::holds_alternative<RegistryTrace>(find.trace)) {
    page_.lvwRegistryEntriesFound.Add(std::move(row));
  } else {
    ListView& cookies = page_.lvwTrackingCookieObjectrecognized;
    cookies.Add(std::move(row));
    page_.lbltracesFound.SetCaption(std::to_string(cookies.Count()));
  }
}

// The row and the root of a threat that was not met before.
TreeNodeRef Results::BeginThreat(const Find& find, std::string_view key) {
  ListView& threats = page_.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
  if (find.rowsFirst) {
    threats.Add(find.threat.Row(key));
    return AddThreatRoot(find.threat);
  }
  TreeNodeRef root = RootOf(Trim(key));
  if (!root) root = AddThreatRoot(find.threat);
  threats.Add(find.threat.Row(key));
  return root;
}

Results::Entered Results::Enter(const Find& find) {
  const std::string_view key = find.key.empty() ? find.threat.name : find.key;
  const bool ignored = IsSpywareIgnored(find.text, key, find.threat.company);
  Entered entered;
  entered.isNew = (!ignored || find.ignoredMakesRoot) && !IsKnown(find, key);
  if (find.rowsFirst) AddRow(find);
  if (find.rowsFirst || entered.isNew) RecomputeCounters();
  entered.root = entered.isNew   ? BeginThreat(find, key)
                 : find.lastRoot ? *find.lastRoot
                                 : RootOf(Trim(key));
  if (find.lastRoot) *find.lastRoot = entered.root;
  if (!find.rowsFirst && (!ignored || find.ignoredIsListed)) AddRow(find);
  if (entered.root) ShowTrace(entered.root, find, ignored);
  return entered;
}

std::vector<std::string> Results::FilesNamed(std::string_view path) const {
  std::vector<std::string> files;
  for (const ListRow& row : page_.lvwFilesToBeDeleted.Rows()) {
    if (EqualNames(row.text, path)) files.push_back(row.text);
  }
  for (const auto& item : page_.sfttvwResults.Items()) {
    const std::string_view text = item.Cell(0);
    if (!text.starts_with(kIgnoredPrefix)) continue;
    const std::string_view trace = text.substr(kIgnoredPrefix.size());
    if (EqualNames(trace, path)) files.emplace_back(trace);
  }
  return files;
}

void Results::AddSpaywareToResults(std::string_view key, const FileTrace& trace,
                                   std::string_view spywareId) {
  Reporting(log_, "AddSpaywareToResults of modSpyware", [&] {
    Enter({.threat = {.name = trace.threatName,
                      .typeName = trace.typeName,
                      .company = trace.threatName,
                      .spywareId = std::string(spywareId)},
           .trace = trace,
           .text = trace.path,
           .key = std::string(key),
           .knownBy = KnownBy::kFileRows,
           .ignoredIsListed = true,
           .ignoredMakesRoot = true});
  });
}

void Results::vbatvwResults_nodeCheck(const TreeNodeRef& node) {
  if (node->parent) return;
  const BusyPointer busy(host_);
  // A copy: events processed between two children may change the tree.
  const std::vector<TreeNodeRef> children = node->children;
  for (const TreeNodeRef& child : children) {
    page_.vbatvwResults.SetChecked(*child, node->checked);
    host_.DoEvents();
  }
}

void Results::vbatvwResults_nodeClick(const TreeNodeRef& node) {
  const TreeNode& threat = node->parent ? *node->parent : *node;
  std::string text = "Threat Name:" + threat.text + "\r\n";
  if (!threat.children.empty()) {
    text += "Traces under this Threat:" + std::to_string(threat.children.size());
  }
  if (node->parent) text += "\r\nTrace: " + node->text;
  page_.txtSpywareDescription.SetText(text);
  SelectThreat(page_.lvwPicRemoveListOfSpywareFoundAndToBeRemoved, threat.text);
}

void Results::chkSelectAllDetectedSpywares_Click() {
  const BusyPointer busy(host_);
  const bool checked = page_.chkSelectAllDetectedSpywares.Checked();
  ListView& threats = page_.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
  const std::vector<TreeNodeRef> nodes = page_.vbatvwResults.InOrder();
  for (size_t i = 0; i < nodes.size(); ++i) {
    TreeNode& node = *nodes[i];
    if (const auto row = threats.FindText(node.text)) threats.SetChecked(*row, checked);
    if (node.hasCheckBox) {
      page_.vbatvwResults.SetChecked(node, checked);
      if (i < page_.sfttvwResults.Count()) page_.sfttvwResults.SetChecked(i, checked);
    }
    vbatvwResults_nodeCheck(nodes[i]);
  }
}

void Results::cmdCheckUncheckAll_Click() {
  CheckBox& all = page_.chkSelectAllDetectedSpywares;
  all.SetValue(all.Checked() ? 0 : 1);
}

void Results::SelectUnselectFiles(const TreeNode& node, ListView& list) {
  const std::string trace = WithoutPrefixes(node.text);
  const auto row = list.FindText(trace);
  if (row && list.At(*row).text == trace) list.SetChecked(*row, node.checked);
}

void Results::SelectUnselectRegsitry(const TreeNode& node) {
  const std::string trace = WithoutPrefixes(node.text);
  ListView& list = page_.lvwRegistryEntriesFound;
  const auto row = list.FindSubItem(trace);
  if (row && RegistryTrace::CompleteKey(list.At(*row)) == trace)
    list.SetChecked(*row, node.checked);
}

std::string Results::ResultsText() const {
  std::string text;
  for (const TreeNodeRef& node : page_.vbatvwResults.InOrder()) {
    if (node->text.find("[Found]") == std::string::npos) text += "\r\n";
    text += node->text + "\r\n";
  }
  return text;
}

}  // namespace quarnel
