#include <gtest/gtest.h>

#include "base/runtime_error.h"
#include "controls/list_view.h"
#include "controls/tree_view.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

class Lists : public ::testing::Test {
 protected:
  TestHost host;
  Form form{host, "frmMain"};
};

TEST_F(Lists, ListView) {
  ListView list(form, "lvw", {"A", "B", "C"});
  list.Add({.text = "One", .subItems = {"x"}, .key = "K"});
  list.Add({.text = "one", .subItems = {"y", "Z"}});
  EXPECT_THROW(list.Add({.text = "two", .key = "k"}), RuntimeError);
  EXPECT_EQ(list.Count(), 2u);
  EXPECT_EQ(list.FindText("ONE"), 0u);
  EXPECT_EQ(list.FindText("on"), std::nullopt);
  EXPECT_EQ(list.FindSubItem("z"), 1u);
  EXPECT_EQ(list.At(0).SubItem(2), "");
  list.SetSubItem(0, 2, "new");
  EXPECT_EQ(list.At(0).SubItem(2), "new");
  EXPECT_THROW(list.SetSubItem(0, 3, "x"), RuntimeError);
  EXPECT_THROW(list.SetSubItem(0, 0, "x"), RuntimeError);
  list.Select(0);
  list.SelectByUser(1);
  EXPECT_EQ(list.SelectedRow(), 1u);
  size_t ticked = 9;
  list.ItemCheck = [&](size_t row) { ticked = row; };
  list.SetChecked(0, true);
  EXPECT_EQ(ticked, 9u);
  list.CheckByUser(1, true);
  EXPECT_EQ(ticked, 1u);
  for (const auto& outside : std::vector<std::function<void()>>{
           [&] { list.At(2); }, [&] { list.Remove(2); }, [&] { list.SetText(2, ""); },
           [&] { list.Select(2); }, [&] { list.CheckByUser(2, true); }}) {
    EXPECT_THROW(outside(), RuntimeError);
  }
  list.Remove(0);
  EXPECT_EQ(list.At(0).text, "one");
}

std::string Shown(const TreeView& tree) {
  std::string text;
  for (const TreeNodeRef& node : tree.InOrder()) text += node->text;
  for (size_t i = 1; i <= tree.Count(); ++i) text += tree.At(i)->text;
  return text;
}

TEST_F(Lists, TreeViewNumbersItsNodesInOrder) {
  TreeView tree(form, "tvw");
  const TreeNodeRef a = tree.AddRoot("a", "A");
  const TreeNodeRef b = tree.AddRoot("b", "B");
  tree.AddChild(a, "a1", "1");
  const TreeNodeRef inner = tree.AddChild(a, "", "2");
  tree.AddChild(inner, "a2x", "x");
  tree.AddChild(b, "", "3");
  EXPECT_EQ(Shown(tree), "A12xB3A12xB3");
  EXPECT_THROW(tree.At(0), RuntimeError);
  EXPECT_THROW(tree.At(7), RuntimeError);
  EXPECT_THROW(tree.AddRoot("a2x", ""), RuntimeError);
  EXPECT_EQ(tree.Find("A"), nullptr);  // keys are taken as written
  EXPECT_EQ(tree.Find(""), nullptr);

  tree.Select(inner);
  tree.Remove(tree.Roots().front());
  EXPECT_EQ(Shown(tree), "B3B3");
  EXPECT_EQ(tree.Selected(), nullptr);
  EXPECT_EQ(tree.Find("a2x"), nullptr);
  tree.AddRoot("a2x", "again");
  // Whoever held a node that went finds it readable, and can do nothing more with it.
  EXPECT_EQ(inner->text, "2");
  EXPECT_EQ(inner->parent, nullptr);
  EXPECT_THROW(tree.Remove(inner), RuntimeError);
  EXPECT_THROW(tree.AddChild(inner, "", ""), RuntimeError);
  tree.Clear();
  EXPECT_EQ(tree.Count(), 0u);
  EXPECT_THROW(tree.Remove(b), RuntimeError);
}

TEST_F(Lists, TreeNodesOutliveTheirTree) {
  auto tree = std::make_unique<TreeView>(form, "tvw");
  TreeView other(form, "other");
  const TreeNodeRef child = tree->AddChild(tree->AddRoot("a", "A"), "b", "B");
  EXPECT_THROW(other.Remove(child), RuntimeError);
  tree.reset();
  EXPECT_EQ(child->parent, nullptr);
}

TEST_F(Lists, TreeViewEvents) {
  TreeView tree(form, "tvw");
  const TreeNodeRef node = tree.AddRoot("a", "A");
  int checks = 0;
  tree.NodeCheck = [&](const TreeNodeRef&) { ++checks; };
  tree.NodeClick = [&](const TreeNodeRef& clicked) { tree.Remove(clicked); };
  tree.SetChecked(*node, true);
  EXPECT_EQ(checks, 0);
  tree.CheckByUser(node, false);
  EXPECT_EQ(checks, 1);
  node->hasCheckBox = false;
  tree.CheckByUser(node, true);
  EXPECT_EQ(checks, 1);
  EXPECT_FALSE(node->checked);
  tree.ClickByUser(node);
  EXPECT_EQ(tree.Count(), 0u);
}

TEST_F(Lists, ItemTree) {
  ItemTree tree(form, "sft");
  const size_t a = tree.Add("A");
  tree.Add("B");
  EXPECT_EQ(tree.AddBelow(a, "1"), 1u);
  EXPECT_EQ(tree.AddBelow(1, "x"), 2u);
  EXPECT_EQ(tree.AddBelow(a, "2"), 3u);  // behind all that hangs under A
  std::string shown;
  for (const TreeItem& item : tree.Items()) shown += item.cells[0] + std::to_string(item.level);
  EXPECT_EQ(shown, "A011x221B0");
  tree.SetCell(0, 2, "cell");
  EXPECT_EQ(tree.At(0).Cell(2), "cell");
  tree.Remove(0);
  EXPECT_EQ(tree.Count(), 4u);
  EXPECT_THROW(tree.At(4), RuntimeError);
  EXPECT_THROW(tree.AddBelow(4, ""), RuntimeError);
  EXPECT_THROW(tree.SetChecked(4, true), RuntimeError);
}

}  // namespace
}  // namespace quarnel
