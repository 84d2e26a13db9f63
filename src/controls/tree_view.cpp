#include "controls/tree_view.h"

#include <algorithm>

#include "base/runtime_error.h"

namespace quarnel {
namespace {

void Collect(const std::vector<TreeNodeRef>& nodes, std::vector<TreeNodeRef>& all) {
  for (const TreeNodeRef& node : nodes) {
    all.push_back(node);
    Collect(node->children, all);
  }
}

size_t SizeOf(const TreeNode& node) {
  size_t size = 1;
  for (const TreeNodeRef& child : node.children) size += SizeOf(*child);
  return size;
}

// The node that stands `offset` places behind the start of `nodes`; reduces `offset` by what it
// passes when it is not among them.
TreeNodeRef Walk(const std::vector<TreeNodeRef>& nodes, size_t& offset) {
  for (const TreeNodeRef& node : nodes) {
    if (offset == 0) return node;
    --offset;
    if (TreeNodeRef found = Walk(node->children, offset)) return found;
  }
  return nullptr;
}

}  // namespace

void TreeView::SetColumns(std::vector<Column> columns) {
  columns_ = std::move(columns);
  Changed();
}

TreeNodeRef TreeView::Insert(std::vector<TreeNodeRef>& siblings, TreeNode* parent,
                             std::string_view key, std::string_view text) {
  if (!key.empty() && byKey_.contains(std::string(key))) {
    throw RuntimeError(ErrorNumber::kKeyNotUnique);
  }
  auto node = std::make_shared<TreeNode>();
  node->tree = this;
  node->key = key;
  node->text = text;
  node->parent = parent;
  siblings.push_back(node);
  if (!key.empty()) byKey_.emplace(node->key, node);
  ++count_;
  Changed();
  return node;
}

TreeNodeRef TreeView::AddRoot(std::string_view key, std::string_view text) {
  return Insert(roots_, nullptr, key, text);
}

TreeNodeRef TreeView::AddChild(const TreeNodeRef& parent, std::string_view key,
                               std::string_view text) {
  if (parent->tree != this) throw RuntimeError(ErrorNumber::kElementNotFound);
  return Insert(parent->children, parent.get(), key, text);
}

TreeNodeRef TreeView::Find(std::string_view key) const {
  const auto found = byKey_.find(std::string(key));
  return found == byKey_.end() ? nullptr : found->second;
}

TreeNodeRef TreeView::At(size_t number) const {
  if (number < 1 || number > count_) throw RuntimeError(ErrorNumber::kIndexOutOfBounds);
  size_t offset = number - 1;
  return Walk(roots_, offset);
}

std::vector<TreeNodeRef> TreeView::InOrder() const {
  std::vector<TreeNodeRef> all;
  all.reserve(count_);
  Collect(roots_, all);
  return all;
}

void TreeView::Forget(const TreeNodeRef& node) {
  for (const TreeNodeRef& child : node->children) Forget(child);
  if (!node->key.empty()) byKey_.erase(node->key);
  node->parent = nullptr;
  node->tree = nullptr;
}

void TreeView::Remove(const TreeNodeRef& node) {
  if (node->tree != this) throw RuntimeError(ErrorNumber::kElementNotFound);
  std::vector<TreeNodeRef>& siblings = node->parent ? node->parent->children : roots_;
  const auto found = std::find(siblings.begin(), siblings.end(), node);
  // `node` may be the very entry that goes.
  const TreeNodeRef keep = std::move(*found);
  siblings.erase(found);
  count_ -= SizeOf(*keep);
  Forget(keep);
  Changed();
}

void TreeView::Clear() {
  if (count_ == 0) return;
  for (const TreeNodeRef& root : roots_) Forget(root);
  roots_.clear();
  byKey_.clear();
  count_ = 0;
  Changed();
}

void TreeView::SetColumn(TreeNode& node, size_t number, std::string_view text) {
  if (number < 1) throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  if (node.columns.size() < number) node.columns.resize(number);
  Assign(node.columns[number - 1], text);
}

TreeNodeRef TreeView::Selected() const {
  TreeNodeRef node = selected_.lock();
  return node && node->tree == this ? node : nullptr;
}

void TreeView::Select(const TreeNodeRef& node) {
  if (selected_.lock() == node) return;
  selected_ = node;
  Changed();
}

std::optional<std::string> TreeView::Property(std::string_view name) const {
  if (name == "count") return std::to_string(count_);
  return Control::Property(name);
}

void TreeView::CheckByUser(const TreeNodeRef& node, bool checked) {
  if (!node->hasCheckBox) return;
  SetChecked(*node, checked);
  if (NodeCheck) NodeCheck(node);
}

void TreeView::ClickByUser(const TreeNodeRef& node) {
  Select(node);
  if (NodeClick) NodeClick(node);
}

const TreeItem& ItemTree::At(size_t index) const {
  if (index >= items_.size()) throw RuntimeError(ErrorNumber::kIndexOutOfBounds);
  return items_[index];
}

TreeItem& ItemTree::Mutable(size_t index) {
  if (index >= items_.size()) throw RuntimeError(ErrorNumber::kIndexOutOfBounds);
  return items_[index];
}

size_t ItemTree::Add(std::string_view text) {
  items_.push_back({.cells = {std::string(text)}});
  Changed();
  return items_.size() - 1;
}

size_t ItemTree::AddBelow(size_t parent, std::string_view text) {
  const int level = At(parent).level;
  size_t index = parent + 1;
  while (index < items_.size() && items_[index].level > level) ++index;
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(index),
                TreeItem{.level = level + 1, .cells = {std::string(text)}});
  Changed();
  return index;
}

void ItemTree::Remove(size_t index) {
  Mutable(index);
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
  Changed();
}

void ItemTree::Clear() {
  if (items_.empty()) return;
  items_.clear();
  Changed();
}

std::optional<size_t> ItemTree::FindText(std::string_view text) const {
  for (size_t i = 0; i < items_.size(); ++i) {
    if (items_[i].Cell(0) == text) return i;
  }
  return std::nullopt;
}

void ItemTree::SetCell(size_t index, size_t number, std::string_view text) {
  TreeItem& item = Mutable(index);
  if (item.cells.size() <= number) item.cells.resize(number + 1);
  Assign(item.cells[number], text);
}

std::optional<std::string> ItemTree::Property(std::string_view name) const {
  if (name == "count") return std::to_string(items_.size());
  return Control::Property(name);
}

}  // namespace quarnel
