#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "controls/control.h"
#include "controls/look.h"

namespace quarnel {

// A node of a tree. Nodes are shared, so that one held across event processing stays readable even
// when a handler removed it from its tree meanwhile.
struct TreeNode {
  // The tree in which the node stands; nothing for one that was removed.
  const Control* tree = nullptr;
  std::string key;
  std::string text;
  std::vector<std::string> columns;  // column 1 is columns[0]; the text is column 0
  int image = 0;
  int selectedImage = 0;
  Colour colour = Colour::kBlack;
  bool checked = false;
  bool bold = false;
  bool expanded = false;
  bool hasCheckBox = true;
  TreeNode* parent = nullptr;  // nothing for a root, and for a node that was removed
  std::vector<std::shared_ptr<TreeNode>> children;

  Look LookOf() const { return {.colour = colour, .bold = bold, .picture = image}; }
};

using TreeNodeRef = std::shared_ptr<TreeNode>;

// A tree of nodes with check boxes and columns. Node numbers count from 1 in the order in which the
// nodes stand on the screen: each root is followed by what hangs under it.
class TreeView : public Control {
 public:
  TreeView(Form& form, std::string name) : Control(form, std::move(name)) {}
  ~TreeView() override { Clear(); }  // nodes held elsewhere must not point back here
  std::string_view Type() const override { return "TreeView"; }

  struct Column {
    std::string header;
    bool visible = true;
  };
  const std::vector<Column>& Columns() const { return columns_; }
  void SetColumns(std::vector<Column> columns);

  // Adds a root, or a child at the end of `parent`'s children. Raises kKeyNotUnique when the key
  // stands already (an empty key is none), and kElementNotFound when the parent was removed.
  TreeNodeRef AddRoot(std::string_view key, std::string_view text);
  TreeNodeRef AddChild(const TreeNodeRef& parent, std::string_view key, std::string_view text);

  // The node with this key, letter case as written; null when there is none.
  TreeNodeRef Find(std::string_view key) const;

  // The node of a number; kIndexOutOfBounds outside 1 to Count().
  TreeNodeRef At(size_t number) const;
  size_t Count() const { return count_; }
  const std::vector<TreeNodeRef>& Roots() const { return roots_; }

  // All nodes in order, as they stand now.
  std::vector<TreeNodeRef> InOrder() const;

  // Removes a node with all that hangs under it.
  void Remove(const TreeNodeRef& node);
  void Clear();

  // Changes go through the tree, so that a front learns of them.
  void SetChecked(TreeNode& node, bool checked) { Assign(node.checked, checked); }
  void SetText(TreeNode& node, std::string_view text) { Assign(node.text, text); }
  void SetBold(TreeNode& node, bool bold) { Assign(node.bold, bold); }
  void SetColour(TreeNode& node, Colour colour) { Assign(node.colour, colour); }
  void SetImage(TreeNode& node, int image) { Assign(node.image, image); }
  void SetExpanded(TreeNode& node, bool expanded) { Assign(node.expanded, expanded); }
  void SetColumn(TreeNode& node, size_t number, std::string_view text);
  void Select(const TreeNodeRef& node);
  // Null when no node is selected, or the one that was has been removed.
  TreeNodeRef Selected() const;

  // Asks the front to repaint now.
  void Refresh() { Changed(); }

  std::string ValueText() const override { return std::to_string(count_); }
  std::optional<std::string> Property(std::string_view name) const override;

  void CheckByUser(const TreeNodeRef& node, bool checked);
  void ClickByUser(const TreeNodeRef& node);
  using Control::ClickByUser;

  std::function<void(const TreeNodeRef& node)> NodeCheck;
  std::function<void(const TreeNodeRef& node)> NodeClick;

 private:
  TreeNodeRef Insert(std::vector<TreeNodeRef>& siblings, TreeNode* parent, std::string_view key,
                     std::string_view text);
  void Forget(const TreeNodeRef& node);

  std::vector<Column> columns_;
  std::vector<TreeNodeRef> roots_;
  std::unordered_map<std::string, TreeNodeRef> byKey_;
  std::weak_ptr<TreeNode> selected_;
  size_t count_ = 0;
};

struct TreeItem {
  int level = 0;
  std::vector<std::string> cells;
  bool checked = false;
  bool bold = false;
  bool expanded = false;

  std::string_view Cell(size_t number) const {
    return number < cells.size() ? std::string_view(cells[number]) : std::string_view();
  }
};

// A tree kept as a flat sequence of items with levels. Items are counted from 0; an index is good
// until the next insertion or removal before it.
class ItemTree : public Control {
 public:
  ItemTree(Form& form, std::string name) : Control(form, std::move(name)) {}
  std::string_view Type() const override { return "ItemTree"; }

  const std::vector<TreeItem>& Items() const { return items_; }
  size_t Count() const { return items_.size(); }
  // Access by index raises kIndexOutOfBounds outside the sequence.
  const TreeItem& At(size_t index) const;

  size_t Add(std::string_view text);  // at the end, on level 0
  // Behind all that hangs under the item `parent`, one level deeper than it.
  size_t AddBelow(size_t parent, std::string_view text);
  void Remove(size_t index);  // this item alone
  void Clear();
  std::optional<size_t> FindText(std::string_view text) const;  // cell 0, letter case as written
  void SetCell(size_t index, size_t number, std::string_view text);
  void SetChecked(size_t index, bool checked) { Assign(Mutable(index).checked, checked); }
  void SetBold(size_t index, bool bold) { Assign(Mutable(index).bold, bold); }
  void SetExpanded(size_t index, bool expanded) { Assign(Mutable(index).expanded, expanded); }

  std::string ValueText() const override { return std::to_string(items_.size()); }
  std::optional<std::string> Property(std::string_view name) const override;

 private:
  TreeItem& Mutable(size_t index);
  std::vector<TreeItem> items_;
};

}  // namespace quarnel
