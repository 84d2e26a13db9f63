#include <gtest/gtest.h>

#include "base/runtime_error.h"
#include "controls/list_view.h"
#include "controls/mnemonic.h"
#include "controls/simple_controls.h"
#include "controls/tree_view.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

class Controls : public ::testing::Test {
 protected:
  Handler Counts() {
    return [this] { ++clicks; };
  }
  TestHost host;
  Form form{host, "frmMain"};
  int clicks = 0;
};

TEST_F(Controls, CheckBoxClicksWhenItsValueChanges) {
  CheckBox box(form, "chk");
  box.Click = Counts();
  box.SetValue(0);
  EXPECT_EQ(clicks, 0);
  box.SetValue(1);
  box.SetValue(1);
  box.SetByUser("True");
  EXPECT_EQ(clicks, 1);
  box.ClickByUser();
  EXPECT_EQ(clicks, 2);
  EXPECT_FALSE(box.Checked());
  box.SetValue(2);
  EXPECT_FALSE(box.Checked());
  box.ClickByUser();
  EXPECT_TRUE(box.Checked());
  EXPECT_THROW(box.SetValue(3), RuntimeError);
  EXPECT_THROW(box.SetByUser("maybe"), RuntimeError);
  // A handler may set its own box: it settles instead of running on.
  box.Click = [&] { box.SetValue(0); };
  box.SetValue(2);
  EXPECT_EQ(box.Value(), 0);
}

TEST(Mnemonics, EachCaptionHasALetterOfItsOwn) {
  const std::vector<CaptionText> shared =
      ShareMnemonics({"&File", "Fish & &chips", "&&& Co", "&Find", "Fin", "First", "IF"});
  std::string letters;
  for (const CaptionText& caption : shared) {
    letters += caption.mnemonic == CaptionText::kNone ? '-' : caption.text.at(caption.mnemonic);
  }
  EXPECT_EQ(shared.at(1).text, "Fish & chips");
  EXPECT_EQ(shared.at(2).text, "&& Co");
  // The marked ones first; then the beginning of a word, then any letter.
  EXPECT_EQ(letters, "Fcoinr-");
}

TEST_F(Controls, CaptionReadsWithoutTheMarkOfItsKey) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"N&o", "No"},      {"Browser && Startup", "Browser & Startup"},
      {"a & b", "a & b"}, {"&&&C", "&C"},
      {"&A&B", "A&B"},    {"end&", "end&"}};
  Button button(form, "cmd");
  for (const auto& [caption, text] : cases) {
    button.SetCaption(caption);
    EXPECT_EQ(button.ValueText(), text);
  }
  // A label's text and a menu's are what they are.
  Label label(form, "lbl", "R&D");
  MenuItem item(form, "mnu", "&File");
  EXPECT_EQ(label.ValueText(), "R&D");
  EXPECT_EQ(item.ValueText(), "&File");
}

TEST_F(Controls, OptionsAndCombosClickByUserOnly) {
  OptionGroup group;
  OptionButton first(form, "opt(0)", group), second(form, "opt(1)", group);
  first.Click = second.Click = Counts();
  EXPECT_EQ(group.Chosen(), -1);
  group.Choose(0);
  EXPECT_EQ(clicks, 0);
  second.SetByUser("1");
  EXPECT_EQ(group.Chosen(), 1);
  EXPECT_EQ(clicks, 1);
  EXPECT_THROW(second.SetByUser("0"), RuntimeError);
  group.Choose(7);
  EXPECT_EQ(group.Chosen(), -1);

  ComboBox combo(form, "cmb");
  combo.Click = Counts();
  combo.SetItems({"2", "one", "zero"});
  combo.SetListIndex(1);
  EXPECT_EQ(combo.Text(), "one");
  EXPECT_EQ(clicks, 1);
  combo.SetByUser("2");  // the item of this text comes before the one of this index
  EXPECT_EQ(combo.ListIndex(), 0);
  combo.SetByUser("1");
  EXPECT_EQ(combo.ListIndex(), 1);
  EXPECT_EQ(clicks, 3);
  EXPECT_THROW(combo.SetByUser("3"), RuntimeError);
  EXPECT_THROW(combo.SetListIndex(-2), RuntimeError);
  combo.SetItems({});
  EXPECT_EQ(combo.Text(), "");
}

TEST_F(Controls, BarsKeepTheirRange) {
  ProgressBar strict(form, "pbgMain"), loose(form, "pbgLoose", ProgressBar::Range::kLoose);
  EXPECT_THROW(strict.SetValue(100.5), RuntimeError);
  EXPECT_THROW(strict.SetValue(-1), RuntimeError);
  strict.SetValue(100);
  strict.SetMax(50);
  EXPECT_EQ(strict.Value(), 50);
  strict.SetValue(0);
  strict.SetMin(10);
  EXPECT_EQ(strict.Value(), 10);
  EXPECT_THROW(strict.SetMin(51), RuntimeError);
  loose.SetValue(250);
  loose.SetMax(0);
  EXPECT_EQ(loose.Value(), 250);
}

TEST_F(Controls, RevisionsTellChanges) {
  Label label(form, "lbl", "a");
  const uint64_t before = label.Revision();
  label.SetCaption("a");
  label.SetVisible(true);
  label.SetForeColour(Colour::kBlack);
  EXPECT_EQ(label.Revision(), before);
  label.SetCaption("b");
  label.SetForeColour(Colour::kRed);
  EXPECT_EQ(label.Revision(), before + 2);
}

TEST_F(Controls, ListView) {
  ListView list(form, "lvw", {"A", "B", "C"});
  list.Add({.text = "One", .subItems = {"x"}, .key = "K"});
  list.Add({.text = "one", .subItems = {"y", "Z"}});
  EXPECT_THROW(list.Add({.text = "two", .key = "k"}), RuntimeError);
  EXPECT_EQ(list.Count(), 2u);
  EXPECT_EQ(list.FindText("ONE"), 0u);
  EXPECT_EQ(list.FindText("on"), std::nullopt);
  EXPECT_EQ(list.FindSubItem("z"), 1u);
  EXPECT_EQ(list.At(0).SubItem(2), "");
  for (const auto& outside : std::vector<std::function<void()>>{
           [&] { list.At(2); }, [&] { list.Remove(2); }, [&] { list.SetText(2, ""); },
           [&] { list.Select(2); }, [&] { list.CheckByUser(2, true); },
           [&] { list.SetSubItem(0, 3, "x"); }, [&] { list.SetSubItem(0, 0, "x"); }}) {
    EXPECT_THROW(outside(), RuntimeError);
  }
}

std::string Shown(const TreeView& tree) {
  std::string text;
  for (const TreeNodeRef& node : tree.InOrder()) text += node->text;
  for (size_t i = 1; i <= tree.Count(); ++i) text += tree.At(i)->text;
  return text;
}

TEST_F(Controls, TreeViewNumbersItsNodesInOrder) {
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
  EXPECT_THROW(tree.Remove(b), RuntimeError);
  auto shortLived = std::make_unique<TreeView>(form, "other");
  const TreeNodeRef child = shortLived->AddChild(shortLived->AddRoot("a", "A"), "b", "B");
  EXPECT_THROW(tree.Remove(child), RuntimeError);
  shortLived.reset();
  EXPECT_EQ(child->parent, nullptr);
}

TEST_F(Controls, ItemTree) {
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
