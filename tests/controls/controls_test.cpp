#include <gtest/gtest.h>

#include "base/runtime_error.h"
#include "controls/form.h"
#include "controls/list_view.h"
#include "controls/mnemonic.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"
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

class LoggedForm : public Form {
 public:
  LoggedForm(Host& host, std::string& log) : Form(host, "frmLogged"), log_(log) {}

  CheckBox chkOne{*this, "chkOne"};
  bool refuses = false;

 protected:
  void Form_Load() override { log_ += "load "; }
  void Form_Activate() override { log_ += "activate "; }
  void Form_Resize() override { log_ += "resize "; }
  void Form_QueryUnload(bool& cancel, UnloadMode mode) override {
    log_ += "query" + std::to_string(static_cast<int>(mode)) + " ";
    cancel = refuses;
  }
  void Form_Unload() override {
    log_ += "unload ";
    Close(UnloadMode::kCode);  // asked for once more while it goes: nothing more happens
  }

 private:
  std::string& log_;
};

class Forms : public ::testing::Test {
 protected:
  std::string Taken() { return std::exchange(log, {}); }
  TestHost host;
  std::string log;
};

TEST_F(Forms, LiveAsWindowsDo) {
  LoggedForm form(host, log);
  form.Show();
  form.Show();
  EXPECT_EQ(Taken(), "load resize activate ");
  EXPECT_EQ(host.LoadedForms().size(), 1u);
  form.SetWindowState(WindowState::kMinimised);
  form.Hide();
  form.SetWindowState(WindowState::kNormal);
  form.Show();
  EXPECT_EQ(Taken(), "resize resize activate ");
  form.refuses = true;
  EXPECT_FALSE(form.Close(UnloadMode::kUser));
  EXPECT_TRUE(form.IsLoaded() && form.Visible());
  form.refuses = false;
  EXPECT_TRUE(form.Close(UnloadMode::kSessionEnd));
  EXPECT_TRUE(form.Close(UnloadMode::kUser));
  EXPECT_EQ(Taken(), "query0 query2 unload ");
  EXPECT_FALSE(form.Visible());
  EXPECT_TRUE(host.LoadedForms().empty());
}

// A button that closes its form and opens it again, twice over, still stands in its own handler.
TEST_F(Forms, StayReadableInsideTheirOwnHandlers) {
  FormSlot<LoggedForm> slot([this] { return std::make_unique<LoggedForm>(host, log); });
  LoggedForm& first = slot.Touch();
  first.chkOne.Click = [&slot, &first] {
    for (int i = 0; i < 2; ++i) {
      slot.Unload();
      slot->chkOne.SetCaption("new");
    }
    EXPECT_EQ(first.chkOne.Value(), 1);
    EXPECT_NE(&slot.Touch(), &first);
  };
  first.chkOne.ClickByUser();
}

using namespace std::chrono_literals;

class Timers : public ::testing::Test {
 protected:
  Timers() { form.Load(); }
  Handler Logs(const std::string& text) {
    return [this, text] { log += text; };
  }
  // What is logged meanwhile.
  std::string During(Milliseconds time) {
    host.Advance(time);
    return std::exchange(log, {});
  }

  TestHost host;
  Form form{host, "frmMain"};
  std::string log;
};

TEST_F(Timers, TickInTheOrderInWhichTheyFallDue) {
  Timer slow(form, "slow", 30ms, true);
  Timer fast(form, "fast", 10ms, true);
  Timer off(form, "off", 1ms, false);
  slow.Tick = Logs("s");
  fast.Tick = Logs("f");
  off.Tick = Logs("x");
  EXPECT_EQ(During(35ms), "ffsf");
  // One that was missed many times ticks once, as a window's timer does.
  host.virtualClock().Pass(100ms);
  host.DoEvents();
  EXPECT_EQ(log, "fs");
}

TEST_F(Timers, SwitchingOnAndANewIntervalStartAnew) {
  Timer timer(form, "timer", 10ms, true);
  timer.Tick = Logs("t");
  EXPECT_EQ(During(9ms), "");
  timer.SetEnabled(false);
  EXPECT_EQ(During(50ms), "");
  Control& plain = timer;
  plain.SetEnabled(true);
  EXPECT_EQ(During(9ms), "");
  EXPECT_EQ(During(1ms), "t");
  timer.SetInterval(20ms);
  EXPECT_EQ(During(19ms), "");
  timer.SetInterval(0ms);
  EXPECT_EQ(During(1h), "");
}

TEST_F(Timers, CountFromTheLoadingOfTheirForm) {
  Form late(host, "late");
  Timer timer(late, "timer", 10ms, true);
  timer.Tick = Logs("t");
  EXPECT_EQ(During(1min), "");
  late.Load();
  EXPECT_EQ(During(9ms), "");
  EXPECT_EQ(During(1ms), "t");
  late.Close(UnloadMode::kCode);
  EXPECT_EQ(During(1min), "");
}

TEST_F(Timers, GoOnAfterAnError) {
  Timer timer(form, "timer", 10ms, true);
  timer.Tick = [&] {
    log += 't';
    host.DoEvents();
    throw RuntimeError(ErrorNumber::kOverflow);
  };
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(IgnoringErrors([&] { host.Advance(10ms); }));
  EXPECT_EQ(log, "ttt");
}

TEST_F(Timers, MayEndAnyTimerInAHandler) {
  auto victim = std::make_unique<Timer>(form, "victim", 10ms, true);
  auto self = std::make_unique<Timer>(form, "self", 10ms, true);
  victim->Tick = Logs("v");
  self->Tick = [this, &self, &victim, kept = std::string(100, 'k')] {
    victim.reset();
    self.reset();
    log += kept[99];
  };
  victim->SetEnabled(false);
  victim->SetEnabled(true);  // falls due behind the other
  EXPECT_EQ(During(1s), "vk");
}

// What was left of an interval would be as long as the machine was quick.
TEST_F(Timers, BeginAnewOnAnotherClock) {
  Timer timer(form, "timer", 10ms, true);
  timer.Tick = Logs("t");
  EXPECT_EQ(During(4ms), "");
  VirtualClock other{DateTime()};
  other.Pass(1h);
  host.SetClock(other);
  EXPECT_EQ(During(9ms), "");
  EXPECT_EQ(During(1ms), "t");
}

// What is slept over leaves no gap behind: the ticks that come have their places in time.
TEST_F(Timers, SleepOverIdleTicks) {
  Timer timer(form, "timer", 10ms, true);
  Timer other(form, "other", 33ms, true);
  std::vector<int64_t> ticks;
  const Milliseconds start = host.clock().Ticks();
  const auto now = [&] { return host.clock().Ticks() - start; };
  Milliseconds busyFrom = 95ms;
  timer.Tick = [&] { ticks.push_back(now().count()); };
  timer.IdleFor = [&] { return busyFrom - now(); };
  host.Advance(125ms);
  EXPECT_EQ(ticks, (std::vector<int64_t>{100, 110, 120}));
  // Whatever a handler or a caller changes counts at once.
  busyFrom = 10s;
  other.Tick = [&] {
    if (now() > 600ms) busyFrom = 0ms;
  };
  host.Advance(525ms);
  EXPECT_EQ(ticks, (std::vector<int64_t>{100, 110, 120, 630, 640, 650}));
}

}  // namespace
}  // namespace quarnel
