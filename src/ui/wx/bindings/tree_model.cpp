#include "ui/wx/bindings/tree_model.h"

#include <algorithm>
#include <map>

#include "base/text.h"
#include "ui/wx/bindings/data_view.h"
#include "ui/wx/icons.h"
#include "ui/wx/metrics.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

// What a node stands for, by how the lines of the results are written.
std::string_view IconNameOf(const TreeNode& node) {
  if (node.parent == nullptr) return "threat";
  const std::string_view text = node.text;
  if (text.find("[Ignored]") != std::string_view::npos) return "trace-ignored";
  if (text.find("HKEY_") != std::string_view::npos) return "trace-registry";
  if (text.find("Cookies\\") != std::string_view::npos) return "trace-cookie";
  return icons::NameOfType(text);
}

const wxBitmapBundle& IconBefore(const TreeNode& node) {
  static std::map<std::string_view, wxBitmapBundle> icons;
  static const wxBitmapBundle none;
  if (node.image == 0) return none;
  const std::string_view name = IconNameOf(node);
  wxBitmapBundle& icon = icons[name];
  if (!icon.IsOk()) icon = icons::Get(name, metrics::kSmallIcon);
  return icon;
}

}  // namespace

void TreeModel::Learn(const TreeNodeRef& node) {
  known_[node.get()].node = node;
  parents_[node.get()] = node->parent;
  children_[node->parent].push_back(node.get());
}

void TreeModel::Forget(const TreeNode* node) {
  const TreeNode* parent = ParentOf(node);
  std::erase(children_[parent], node);
  children_.erase(node);
  parents_.erase(node);
  known_.erase(node);
}

const TreeNode* TreeModel::ParentOf(const TreeNode* node) const {
  const auto found = parents_.find(node);
  return found == parents_.end() ? nullptr : found->second;
}

void TreeModel::Visit(const std::vector<TreeNodeRef>& nodes, Changes& changes) {
  for (const TreeNodeRef& node : nodes) {
    const auto [entry, isNew] = known_.try_emplace(node.get());
    Known& known = entry->second;
    known.walk = walk_;
    known.place = met_++;
    if (isNew || known.checked != node->checked || known.look != node->LookOf() ||
        known.text != node->text || known.columns != node->columns) {
      (isNew ? changes.added : changes.changed).push_back(node);
      known.checked = node->checked;
      known.look = node->LookOf();
      known.text = node->text;
      known.columns = node->columns;
    }
    Visit(node->children, changes);
  }
}

std::vector<TreeNodeRef> TreeModel::Follow() {
  // Beyond this the toolkit reads everything anew faster than it takes single steps.
  constexpr size_t kManySteps = 400;
  ++walk_;
  met_ = 0;
  Changes changes;
  Visit(tree_.Roots(), changes);
  std::vector<TreeNodeRef> removed;
  if (known_.size() > met_) {
    for (const auto& [node, known] : known_) {
      if (known.walk != walk_) removed.push_back(known.node);
    }
  }
  const bool many = changes.added.size() + removed.size() > kManySteps;
  for (const TreeNodeRef& node : removed) {
    const wxDataViewItem parent = ItemOf(ParentOf(node.get()));
    // What hangs under a removed node goes with it.
    const bool told = known_.contains(ParentOf(node.get())) || !parent.IsOk();
    Forget(node.get());
    if (!many && told) ItemDeleted(parent, ItemOf(node.get()));
  }
  for (const TreeNodeRef& node : changes.added) {
    Learn(node);
    if (!many) ItemAdded(ItemOf(node->parent), ItemOf(node.get()));
  }
  if (many) {
    Cleared();
    return tree_.Roots();
  }
  for (const TreeNodeRef& node : changes.changed) ItemChanged(ItemOf(node.get()));
  return changes.added;
}

TreeNodeRef TreeModel::NodeOf(const wxDataViewItem& item) const {
  const auto found = known_.find(static_cast<const TreeNode*>(item.GetID()));
  return found == known_.end() ? nullptr : found->second.node;
}

bool TreeModel::HasValue(const wxDataViewItem& item, unsigned column) const {
  const TreeNodeRef node = NodeOf(item);
  return node && (column != data_view::kTickColumn || node->hasCheckBox);
}

void TreeModel::GetValue(wxVariant& value, const wxDataViewItem& item, unsigned column) const {
  const TreeNodeRef node = NodeOf(item);
  if (!node) return;
  if (column == data_view::kTickColumn) {
    value = node->checked;
  } else if (column > 0) {
    value = column <= node->columns.size() ? ToWxLine(node->columns[column - 1]) : wxString();
  } else {
    value << wxDataViewIconText(ToWxLine(node->text), IconBefore(*node));
  }
}

bool TreeModel::SetValue(const wxVariant& value, const wxDataViewItem& item, unsigned column) {
  const TreeNodeRef node = NodeOf(item);
  if (!node || column != data_view::kTickColumn || !ticked) return false;
  ticked(node, value.GetBool());
  return true;
}

bool TreeModel::GetAttr(const wxDataViewItem& item, unsigned,
                        wxDataViewItemAttr& attributes) const {
  const TreeNodeRef node = NodeOf(item);
  return node && data_view::Show(node->LookOf(), attributes);
}

wxDataViewItem TreeModel::GetParent(const wxDataViewItem& item) const {
  return ItemOf(ParentOf(static_cast<const TreeNode*>(item.GetID())));
}

bool TreeModel::IsContainer(const wxDataViewItem& item) const {
  const auto* node = static_cast<const TreeNode*>(item.GetID());
  // Every root may get traces.
  return node == nullptr || ParentOf(node) == nullptr || children_.contains(node);
}

unsigned TreeModel::GetChildren(const wxDataViewItem& item, wxDataViewItemArray& children) const {
  const auto found = children_.find(static_cast<const TreeNode*>(item.GetID()));
  if (found == children_.end()) return 0;
  for (const TreeNode* child : found->second) children.Add(ItemOf(child));
  return static_cast<unsigned>(found->second.size());
}

int TreeModel::Compare(const wxDataViewItem& left, const wxDataViewItem& right, unsigned column,
                       bool ascending) const {
  const auto first = known_.find(static_cast<const TreeNode*>(left.GetID()));
  const auto second = known_.find(static_cast<const TreeNode*>(right.GetID()));
  if (first == known_.end() || second == known_.end()) return 0;
  const auto text = [column](const Known& known) -> std::string_view {
    if (column == 0) return known.text;
    return column <= known.columns.size() ? std::string_view(known.columns[column - 1])
                                          : std::string_view();
  };
  int order = text(first->second).compare(text(second->second));
  if (order == 0) order = first->second.place < second->second.place ? -1 : 1;
  return ascending ? order : -order;
}

}  // namespace quarnel
