#include "controls/simple_controls.h"

#include <gtest/gtest.h>

#include "base/runtime_error.h"
#include "controls/mnemonic.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

class SimpleControls : public ::testing::Test {
 protected:
  Handler Counts() {
    return [this] { ++clicks; };
  }
  TestHost host;
  Form form{host, "frmMain"};
  int clicks = 0;
};

TEST_F(SimpleControls, CheckBoxClicksWhenItsValueChanges) {
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

TEST_F(SimpleControls, CaptionReadsWithoutTheMarkOfItsKey) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"&Apply", "Apply"}, {"N&o", "No"},  {"Browser && Startup", "Browser & Startup"},
      {"a & b", "a & b"},  {"&&&C", "&C"}, {"&A&B", "A&B"},
      {"end&", "end&"},    {"&", "&"},     {"", ""}};
  Button button(form, "cmd");
  for (const auto& [caption, text] : cases) {
    button.SetCaption(caption);
    EXPECT_EQ(button.ValueText(), text);
    EXPECT_EQ(button.Property("caption"), text);
    EXPECT_EQ(button.Caption(), caption);
  }
  // A label's text and a menu's are what they are.
  Label label(form, "lbl", "R&D");
  MenuItem item(form, "mnu", "&File");
  EXPECT_EQ(label.ValueText(), "R&D");
  EXPECT_EQ(item.ValueText(), "&File");
}

TEST_F(SimpleControls, OptionsAndCombosClickByUserOnly) {
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

TEST_F(SimpleControls, BarsKeepTheirRange) {
  ProgressBar strict(form, "pbgMain"), loose(form, "pbgLoose", ProgressBar::Range::kLoose);
  EXPECT_THROW(strict.SetValue(100.5), RuntimeError);
  EXPECT_THROW(strict.SetValue(-1), RuntimeError);
  EXPECT_THROW(strict.SetMax(-1), RuntimeError);
  EXPECT_EQ(strict.Value(), 0);
  strict.SetValue(100);
  strict.SetMax(50);
  EXPECT_EQ(strict.ValueText(), "50");
  strict.SetValue(0);
  strict.SetMin(10);
  EXPECT_EQ(strict.Value(), 10);
  EXPECT_THROW(strict.SetMin(51), RuntimeError);
  loose.SetValue(250);
  loose.SetMax(0);
  EXPECT_EQ(loose.Value(), 250);
}

TEST_F(SimpleControls, RevisionsTellChanges) {
  Label label(form, "lbl", "a");
  const uint64_t before = label.Revision();
  label.SetCaption("a");
  label.SetVisible(true);
  label.SetForeColour(Colour::kBlack);
  EXPECT_EQ(label.Revision(), before);
  label.SetCaption("b");
  label.SetForeColour(Colour::kRed);
  EXPECT_EQ(label.Revision(), before + 2);
  EXPECT_EQ(label.Property("forecolor"), "FF0000");
  EXPECT_EQ(label.Property("caption"), "b");
  EXPECT_EQ(label.Property("none"), std::nullopt);
  EXPECT_THROW(label.SetByUser("x"), RuntimeError);
}

}  // namespace
}  // namespace quarnel
