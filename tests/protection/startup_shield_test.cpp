#include "protection/startup_shield.h"

#include <gmock/gmock.h>

#include <optional>
#include <utility>

#include "core/paths.h"
#include "platform/held_folders.h"
#include "platform/shortcut.h"
#include "support/platform_fixture.h"
#include "support/recording_window.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

enum : size_t { kFolderStep, kMachineRun, kMachineOnce, kMachineOnceEx, kUserRun, kUserOnce };
const std::string kMachineSection = "Registry Local Machine Run";

// The shield and its page on a bare form, on a machine on which nothing starts.
class StartupShieldTest : public PlatformTest {
 protected:
  StartupShieldTest() {
    settings.SaveSetting("Registry Status", "ResetValue", "x");
    settings.ResetRegistrySettings();
    for (size_t step = kMachineRun; step < startup::kWalked; ++step) {
      while (std::optional<std::string> name = FirstValue(step)) {
        DeleteValue(registry(), Place(step).hive, Place(step).key, *name);
      }
    }
    IgnoringErrors([&] { files().Delete(path); });
    WriteWholeFile(files(), log.Path(), "");
    options.chkStartupShield.SetValue(1);
    options.chkDisplayHijakRestoreAlerts.SetValue(1);
    Restart();
  }
  ~StartupShieldTest() override {
    IgnoringErrors([&] { files().Delete(path); });
  }

  static startup::Place Place(size_t step) { return *startup::Locations()[step].walked; }
  std::optional<std::string> FirstValue(size_t step) {
    std::optional<std::string> first;
    startup::EnumerateRegKeyValues(registry(), Place(step),
                                   [&](const std::string& name, const std::string&) {
                                     first = name;
                                     return false;
                                   });
    return first;
  }
  void Set(size_t step, std::string_view name, std::string_view data) {
    RegCreateKeyValue(registry(), Place(step).hive, Place(step).key, name, std::string(data));
  }
  std::string Get(size_t step, std::string_view name) {
    return QueryText(registry(), Place(step).hive, Place(step).key, name);
  }
  void Verdicts(std::string_view section, std::string_view lines) {
    WriteWholeFile(files(), path,
                   "[" + std::string(section) + "]\r\n" + std::string(lines) + "\r\n");
  }
  void Restart() {
    shield.emplace(StartupShield::Uses{page, options, {platform(), host, settings, log}, window});
  }
  // A new start behind the first run, walked up to this location.
  void WalkTo(size_t step) {
    settings.Save(setting::kJustAfterInstallation, false);
    Restart();
    shield->LoadJustAfterInstallation();
    for (size_t i = 0; i <= step; ++i) shield->LoadStartupItems(tree, list);
  }
  // The nodes as "text|column|colour".
  std::vector<std::string> Nodes() {
    std::vector<std::string> nodes;
    for (const TreeNodeRef& node : tree.InOrder()) {
      if (node->parent == nullptr) continue;
      const char* colour = node->colour == Colour::kRed     ? "|red"
                           : node->colour == Colour::kGreen ? "|green"
                                                            : "|";
      nodes.push_back(node->text + "|" + node->columns.front() + colour);
    }
    return nodes;
  }
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    for (const ListRow& row : list.Rows()) {
      rows.push_back(row.look.bold ? row.text + ":"
                                   : row.text + "|" + std::string(row.SubItem(1)) + "|" +
                                         std::string(row.SubItem(2)));
    }
    return rows;
  }
  std::string Log() { return Read(log.Path()); }

  std::string path = GetPathWithSlash(machine().ProgramFolder()) + "Quarnel_Startup.txt";
  TestHost host;
  RecordingWindow window;
  Settings settings{registry(), "Quarnel"};
  ErrorLog log{files(), machine(), host, "Quarnel"};
  Form form{host, "frmMain"};
  AdvancedToolsPage page{form};
  OptionsPage options{form};
  TreeView& tree = page.vbatvwStartup;
  ListView& list = page.lvwStartup;
  std::optional<StartupShield> shield;
};

TEST_F(StartupShieldTest, FirstRunApprovesFiveLocationsAndThenAsks) {
  for (size_t step = kMachineRun; step < startup::kWalked; ++step) {
    Set(step, "e" + std::to_string(step), "\"C:\\a.exe\" /x");
  }
  shield->LoadJustAfterInstallation();
  shield->LoadStartups();
  for (int tick = 1; tick <= 4; ++tick) shield->tmrStartup_Timer();
  EXPECT_FALSE(settings.Has(setting::kJustAfterInstallation.place));
  EXPECT_THAT(window.asked, IsEmpty());
  EXPECT_EQ(Read(path),
            "[Registry Local Machine Run]\r\ne1=C:\\a.exe[ALLOWED]\r\n"
            "[Registry Local Machine RunOnce]\r\ne2=C:\\a.exe[ALLOWED]\r\n"
            "[Registry Local Machine RunOnceEx]\r\ne3=C:\\a.exe[ALLOWED]\r\n"
            "[Registry Current User Run]\r\ne4=C:\\a.exe[ALLOWED]\r\n");
  EXPECT_THAT(Rows(), IsEmpty());
  shield->tmrStartup_Timer();
  EXPECT_EQ(settings.GetSetting("BHO", "JustAfterInstallation", "-"), "FALSE");
  EXPECT_THAT(window.asked, ElementsAre("startup alert"));
  EXPECT_EQ(shield->Pending().name, "e5");
  EXPECT_THAT(
      Rows(),
      ElementsAre(
          "Registry Current User RunOnce:", "e5|C:\\a.exe|Registry Current User RunOnce",
          "Registry Local Machine Run:", "e1|C:\\a.exe|" + kMachineSection,
          "Registry Local Machine RunOnce:", "e2|C:\\a.exe|Registry Local Machine RunOnce",
          "Registry Local Machine RunOnceEx:", "e3|C:\\a.exe|Registry Local Machine RunOnceEx",
          "Registry Current User Run:", "e4|C:\\a.exe|Registry Current User Run"));
  EXPECT_EQ(list.At(3).look.colour, Colour::kGreen);
  EXPECT_EQ(list.At(1).look.colour, Colour::kBlack);
  // The list is made anew at each tick from here on, and loses no choice by it.
  list.SelectByUser(3);
  shield->tmrStartup_Timer();
  EXPECT_EQ(list.At(list.SelectedRow().value()).text, "e1");
  // Without its box the shield does nothing but count.
  options.chkStartupShield.SetValue(0);
  tree.Clear();
  for (int tick = 6; tick < 32767; ++tick) shield->tmrStartup_Timer();
  options.chkStartupShield.SetValue(1);
  EXPECT_FALSE(shield->Watches());
  shield->tmrStartup_Timer();
  EXPECT_EQ(tree.Count(), 0U);
}

TEST_F(StartupShieldTest, VerdictsDecideWhatAWalkDoes) {
  const std::string own = GetPathWithSlash(machine().ProgramFolder()) + "QUARNEL.exe";
  const std::pair<const char*, std::string> values[] = {
      {"a allowed", "C:\\a.exe -x"}, {"b blocked", "C:\\b.exe"}, {"c behind it", "C:\\c.exe"},
      {"d changed", "C:\\new.exe"},  {"e empty", "-x"},          {"f own", own}};
  for (const auto& [name, data] : values) Set(kMachineRun, name, data);
  Set(kMachineRun, "e empty", "");
  const std::string lines =
      "a allowed=C:\\a.exe[ALLOWED]\r\nb blocked=C:\\b.exe[BLOCKED]\r\n"
      "d changed=C:\\old.exe[ALLOWED]";
  Verdicts(kMachineSection, lines);
  const std::string before = Read(path);
  WalkTo(kMachineRun);
  EXPECT_EQ(Get(kMachineRun, "b blocked"), "");
  EXPECT_THAT(Nodes(),
              ElementsAre("a allowed|C:\\a.exe[ALLOWED]|green", "b blocked|C:\\b.exe[BLOCKED]|red",
                          "d changed|C:\\new.exe|", "e empty||", "f own|" + own + "|"))
      << "the entry behind a deleted one is met next time";
  EXPECT_EQ(shield->Pending(), (StartupEntry{"d changed", "C:\\new.exe", kMachineSection}));
  EXPECT_THAT(window.asked, ElementsAre("startup alert"));
  for (int i = 0; i < 7; ++i) shield->LoadStartupItems(tree, list);
  EXPECT_THAT(window.asked, ElementsAre("startup alert", "startup alert", "startup alert"));
  EXPECT_EQ(Read(path), before);
  // What another program writes back goes again.
  Set(kMachineRun, "b blocked", "C:\\b.exe");
  WalkTo(kMachineRun);
  EXPECT_EQ(Get(kMachineRun, "b blocked"), "");
}

TEST_F(StartupShieldTest, AlertHangsOnTheBrowsersOption) {
  Set(kMachineRun, "n", "\"C:\\n.exe\"");
  settings.Save(setting::kDisplayHijakRestoreAlerts, 0);
  WalkTo(kMachineRun);
  EXPECT_THAT(window.asked, IsEmpty());
  EXPECT_EQ(shield->Pending().name, "n");
  settings.Save(setting::kDisplayHijakRestoreAlerts, 1);
  settings.SaveSetting("Settings", "IsFirstTimeAfterSetup", "RunUpdates");
  WalkTo(kMachineRun);
  EXPECT_THAT(window.asked, IsEmpty());
  EXPECT_EQ(Get(kMachineRun, "n"), "C:\\n.exe") << "allowed in its cleaned form";
}

TEST_F(StartupShieldTest, WalkInsideAWalkTakesTheTree) {
  for (const char* name : {"a", "b", "c"}) Set(kMachineRun, name, "C:\\x.exe");
  Set(kMachineOnce, "once", "C:\\once.exe");
  bool inside = false;
  window.onAsk = [&](std::string_view) {
    if (!std::exchange(inside, true)) shield->LoadStartupItems(tree, list);
  };
  WalkTo(kMachineRun);
  EXPECT_THAT(Nodes(), ElementsAre("once|C:\\once.exe|"));
  EXPECT_EQ(Log(), "");
}

TEST_F(StartupShieldTest, UnnamedValueEndsTheWalkOfItsKey) {
  Set(kMachineRun, "", "C:\\x.exe");
  Set(kMachineRun, "z", "C:\\z.exe");
  WalkTo(kMachineRun);
  EXPECT_THAT(Log(), HasSubstr("EnumerateRegKeyValues\r\n"));
  EXPECT_THAT(window.asked, IsEmpty());
}

TEST_F(StartupShieldTest, ButtonsAskAndDecide) {
  Set(kUserRun, "n", "C:\\n.exe");
  const std::string section = "Registry Current User Run";
  Verdicts(section, "n=C:\\n.exe[ALLOWED]");
  WalkTo(kFolderStep);
  page.lblBlockThisStartupItem.ClickByUser();
  EXPECT_THAT(host.messages, IsEmpty()) << "an empty list";
  shield->Reload();
  host.answers = {Answer::kYes, Answer::kNo, Answer::kYes, Answer::kYes};
  page.lblBlockThisStartupItem.ClickByUser();
  EXPECT_EQ(host.messages.back().text, "Please select the sub item from the list.");
  list.SelectByUser(1);
  page.lblBlockThisStartupItem.ClickByUser();
  EXPECT_EQ(Get(kUserRun, "n"), "C:\\n.exe");
  // The list is made anew while the question is open.
  host.onEvents = [&] { list.Select(0); };
  page.lblBlockThisStartupItem.ClickByUser();
  host.onEvents = nullptr;
  EXPECT_EQ(host.messages.back().text,
            "Are you sure you would like to block this Startup program?");
  EXPECT_EQ(host.messages.back().title, "Startup Manager");
  EXPECT_EQ(host.messages.back().icon, MessageIcon::kQuestion);
  EXPECT_EQ(host.messages.back().buttons, MessageButtons::kYesNo);
  EXPECT_EQ(Get(kUserRun, "n"), "");
  EXPECT_THAT(Rows(), ElementsAre(section + ":", "n|C:\\n.exe|" + section));
  EXPECT_EQ(list.At(1).look.colour, Colour::kRed);
  EXPECT_THAT(Read(path), HasSubstr("n=C:\\n.exe[BLOCKED]\r\n"));
  // Allowing writes it back, also into a key that is gone.
  DeleteKey(registry(), hive::kCurrentUser, Place(kUserRun).key);
  list.SelectByUser(1);
  page.lblAllowThisStartupItem.ClickByUser();
  EXPECT_EQ(host.messages.back().text,
            "Are you sure you would like to allow this Startup program?");
  EXPECT_EQ(Get(kUserRun, "n"), "C:\\n.exe");
  EXPECT_EQ(list.At(1).look.colour, Colour::kGreen);
}

TEST_F(StartupShieldTest, LinksOfTheFolderKeepTheirEnding) {
  const std::string folder = GetSpecialFolderPath(machine(), csidl::kCommonStartup);
  CreateFolders(files(), folder.substr(0, folder.size() - 1));
  const std::string link = folder + "quarnel test.lnk";
  const std::string later = folder + "quarnel test2.exe";
  const std::string system = folder + "quarnel test3.lnk";
  WriteWholeFile(files(), link, MakeShortcut("C:\\n.exe"));
  WriteWholeFile(files(), later, "no link");
  WriteWholeFile(files(), system, MakeShortcut("C:\\n.exe"));
  files().SetAttributes(link, file_attribute::kHidden);
  files().SetAttributes(system, file_attribute::kSystem);
  const auto meets = [&](std::string_view name) {
    for (const StartupShield::State& state : shield->States()) {
      if (state.entry.name == name) return state.entry.path + (state.present ? "|there" : "|gone");
    }
    return std::string("-");
  };
  WalkTo(kFolderStep);
  EXPECT_EQ(shield->Pending().name, "quarnel test.lnk");
  EXPECT_THAT(Nodes(), testing::Contains("quarnel test|C:\\n.exe|"));
  EXPECT_THAT(window.asked, testing::Contains("startup alert"));
  EXPECT_EQ(meets("quarnel test2.exe"), "|there");
  EXPECT_EQ(meets("quarnel test3.lnk"), "-");

  // The block looks for a file with two endings, and so does the walk, which ends there.
  const StartupEntry entry = shield->Pending();
  EXPECT_EQ(ErrorOf([&] { shield->Decide(entry, false); }), ErrorNumber::kFileNotFound);
  EXPECT_TRUE(Exists(link));
  WalkTo(kFolderStep);
  EXPECT_THAT(Log(), HasSubstr("EnumerateRegKeyValues\r\n"));
  EXPECT_THAT(Nodes(), Not(testing::Contains("quarnel test2.exe||")));
  shield->Decide(entry, true);
  EXPECT_THAT(Rows(), testing::Contains("quarnel test.lnk|C:\\n.exe|All Users Startup Folder"));
  files().SetAttributes(system, file_attribute::kNormal);
  files().SetAttributes(link, file_attribute::kNormal);
  for (const std::string& file : {link, later, system}) files().Delete(file);
  EXPECT_EQ(meets("quarnel test.lnk"), "C:\\n.exe|gone");
}

TEST_F(StartupShieldTest, ListingWritesNothing) {
  Set(kMachineRun, "blocked", "C:\\b.exe");
  Set(kMachineRun, "new", "C:\\n.exe");
  Verdicts(kMachineSection, "Blocked=C:\\b.exe[BLOCKED]");
  const std::string before = Read(path);
  shield->LoadJustAfterInstallation();
  const std::vector<StartupShield::State> states = shield->States();
  ASSERT_GE(states.size(), 2U);
  EXPECT_EQ(Read(path), before);
  EXPECT_EQ(Get(kMachineRun, "blocked"), "C:\\b.exe");
  for (const StartupShield::State& state : states) {
    if (state.entry.name == "blocked") {
      EXPECT_EQ(state.verdict, StartupShield::State::Verdict::kBlocked);
    } else if (state.entry.name == "new") {
      EXPECT_EQ(state.verdict, StartupShield::State::Verdict::kNone);
    }
  }
}

}  // namespace
}  // namespace quarnel
