#include "scan/results.h"

#include "base/text.h"

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

}  // namespace

std::string WithoutPrefixes(std::string_view text) {
  return Replace(Replace(text, kIgnoredPrefix, ""), kFoundPrefix, "");
}

Results::Results(ResultsPage& page, std::function<int(std::string_view)> levelOf, Host& host,
                 ErrorLog& log)
    : page_(page), levelOf_(std::move(levelOf)), host_(host), log_(log) {}

bool Results::IsSpywareIgnored(std::string_view trace, std::string_view, std::string_view) const {
  return page_.lvwIgnoredSpywares.FindText(trace).has_value();
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

TreeNodeRef Results::AddThreatRoot(std::string_view name, std::string_view type) {
  TreeNodeRef root = page_.vbatvwResults.AddRoot(name, name);
  root->image = root->selectedImage = 1;
  page_.vbatvwResults.SetBold(*root, true);
  page_.vbatvwResults.SetExpanded(*root, true);
  page_.vbatvwResults.SetColumn(*root, 1, type);
  page_.vbatvwResults.SetColumn(*root, 2, LevelColumn(name));
  const size_t item = page_.sfttvwResults.Add(name);
  page_.sfttvwResults.SetBold(item, true);
  page_.sfttvwResults.SetExpanded(item, true);
  page_.sfttvwResults.SetCell(item, 2, type);
  return root;
}

void Results::AddTraceChild(const TreeNodeRef& root, std::string_view prefix, const Trace& trace) {
  const std::string text = std::string(prefix) + std::string(trace.text);
  // The count makes equal traces of one threat distinct keys.
  const std::string key = "K" + std::to_string(page_.vbatvwResults.Count()) + "[[]]" +
                          (trace.keyHasPrefix ? text : std::string(trace.text));
  const TreeNodeRef child = page_.vbatvwResults.AddChild(root, key, text);
  child->image = child->selectedImage = 1;
  if (trace.oncePerTrace &&
      page_.sfttvwResults.FindText(std::string(kIgnoredPrefix) + std::string(trace.text))) {
    return;
  }
  if (const auto threat = ThreatItem(page_.sfttvwResults, root->text)) {
    const size_t item = page_.sfttvwResults.AddBelow(*threat, text);
    page_.sfttvwResults.SetExpanded(item, true);
  }
}

void Results::ShowTrace(const TreeNodeRef& root, const Trace& trace) {
  if (!trace.ignored) {
    AddTraceChild(root, kFoundPrefix, trace);
  } else if (!page_.chkDoNotShowIgnoredItem.Checked()) {
    AddTraceChild(root, kIgnoredPrefix, trace);
  }
  // The first find of a threat shows at once.
  if (root->children.size() == 1) page_.vbatvwResults.Refresh();
}

void Results::AddSpaywareToResults(std::string_view key) {
  Reporting(log_, "AddSpaywareToResults of modSpyware", [&] {
    TreeNodeRef root = page_.vbatvwResults.Find(Trim(key));
    if (!page_.lvwFilesToBeDeleted.FindSubItem(key)) {
      RecomputeCounters();
      if (!root) root = AddThreatRoot(current.name, current.type);
      page_.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Add(
          {.text = std::string(key), .subItems = {current.type, current.name}, .tag = current.tag});
    }
    page_.lvwFilesToBeDeleted.Add({.text = current.path, .subItems = {current.type, current.name}});
    if (!root) return;
    ShowTrace(root,
              {.text = current.path, .ignored = IsSpywareIgnored(current.path, key, current.name)});
  });
}

void Results::AddFileTrace(const FileTrace& trace, TreeNodeRef& root) {
  const bool ignored = IsSpywareIgnored(trace.path, trace.threatName, trace.company);
  if (!ignored) {
    if (!page_.lvwFilesToBeDeleted.FindSubItem(trace.threatName)) {
      RecomputeCounters();
      root = page_.vbatvwResults.Find(Trim(trace.threatName));
      if (!root) root = AddThreatRoot(trace.threatName, trace.typeName);
      page_.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Add(
          {.text = trace.threatName,
           .subItems = {trace.typeName, trace.company},
           .tag = trace.spywareId});
    }
    page_.lvwFilesToBeDeleted.Add(
        {.text = trace.path, .subItems = {trace.typeName, trace.threatName}});
  }
  if (root) ShowTrace(root, {.text = trace.path, .ignored = ignored, .oncePerTrace = true});
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
    text += "Traces under this Threat:" + std::to_string(threat.children.size()) + "\r\n";
  }
  if (node->parent) text += "Trace: " + node->text;
  page_.txtSpywareDescription.SetText(text);
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
  if (row && list.At(*row).SubItem(6) == trace) list.SetChecked(*row, node.checked);
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
