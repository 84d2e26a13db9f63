#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "controls/tree_view.h"
#include "ui/wx/wx.h"

namespace quarnel {

// The nodes of a tree as the toolkit asks for them. It keeps what it has told the toolkit, so that
// a change of the tree becomes the few steps from there to the present state.
class TreeModel : public wxDataViewModel {
 public:
  explicit TreeModel(TreeView& tree) : tree_(tree) {}

  // The user ticked a node.
  std::function<void(const TreeNodeRef& node, bool checked)> ticked;

  // Tells the toolkit what has changed since the last call; the nodes that are new to it.
  std::vector<TreeNodeRef> Follow();

  // The number of nodes that the toolkit knows of.
  size_t Count() const { return known_.size(); }

  static wxDataViewItem ItemOf(const TreeNode* node) {
    return wxDataViewItem(const_cast<TreeNode*>(node));
  }
  // Null for no item, and for one that the toolkit should have forgotten.
  TreeNodeRef NodeOf(const wxDataViewItem& item) const;

  bool HasValue(const wxDataViewItem& item, unsigned column) const override;
  void GetValue(wxVariant& value, const wxDataViewItem& item, unsigned column) const override;
  bool SetValue(const wxVariant& value, const wxDataViewItem& item, unsigned column) override;
  bool GetAttr(const wxDataViewItem& item, unsigned column,
               wxDataViewItemAttr& attributes) const override;
  wxDataViewItem GetParent(const wxDataViewItem& item) const override;
  bool IsContainer(const wxDataViewItem& item) const override;
  bool HasContainerColumns(const wxDataViewItem&) const override { return true; }
  unsigned GetChildren(const wxDataViewItem& item, wxDataViewItemArray& children) const override;
  bool HasDefaultCompare() const override { return false; }
  int Compare(const wxDataViewItem& left, const wxDataViewItem& right, unsigned column,
              bool ascending) const override;

 private:
  // A node as the toolkit knows it.
  struct Known {
    TreeNodeRef node;
    size_t place = 0;   // among all nodes
    uint64_t walk = 0;  // the last walk that met it
    bool checked = false;
    Look look;
    std::string text;
    std::vector<std::string> columns;
  };
  struct Changes {
    std::vector<TreeNodeRef> added;
    std::vector<TreeNodeRef> changed;
  };
  void Visit(const std::vector<TreeNodeRef>& nodes, Changes& changes);
  void Learn(const TreeNodeRef& node);
  void Forget(const TreeNode* node);
  const TreeNode* ParentOf(const TreeNode* node) const;

  TreeView& tree_;
  std::unordered_map<const TreeNode*, Known> known_;
  std::unordered_map<const TreeNode*, const TreeNode*> parents_;
  // Of the roots under null.
  std::unordered_map<const TreeNode*, std::vector<const TreeNode*>> children_;
  uint64_t walk_ = 0;
  size_t met_ = 0;  // nodes met in the present walk
};

}  // namespace quarnel
