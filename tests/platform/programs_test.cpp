// What runs on the machine: processes, the shell that starts them, and their windows.

#include "platform/processes.h"

#include "platform/desktop.h"
#include "platform/shell.h"
#include "platform/shortcut.h"
#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class ProcessesTest : public PlatformTest {
 protected:
  Processes& processes() { return platform().processes(); }
};

TEST_F(ProcessesTest, ListsARunningProgramByItsPath) {
  const Victim victim(platform(), Path("Running Program.exe"));
  ASSERT_NE(victim.Id(), 0U);
  EXPECT_TRUE(EqualText(processes().MainModulePath(victim.Id()).value_or(""), victim.Path()));

  std::vector<ProcessRecord> records = {{1, 2, "left over"}};
  int events = 0;
  const int last = Process32_Enum(processes(), records, [&] { ++events; });
  EXPECT_EQ(last + 1, static_cast<int>(records.size()));
  EXPECT_EQ(events, last + 1);
  EXPECT_TRUE(std::any_of(records.begin(), records.end(), [&](const ProcessRecord& record) {
    return record.id == victim.Id() && EqualText(record.executable, victim.Path());
  }));
}

TEST_F(ProcessesTest, EndsAProgramOnceAndNoCopyOfIt) {
  const Victim victim(platform(), Path("victim.exe"));
  ASSERT_NE(victim.Id(), 0U);
  const Victim copy(platform(), Path("copy.exe"));
  ASSERT_NE(copy.Id(), 0U);
  EXPECT_FALSE(processes().WaitForEnd(victim.Id(), milliseconds(1)));
  EXPECT_TRUE(KillProcess(processes(), victim.Id(), 0));
  EXPECT_TRUE(processes().WaitForEnd(victim.Id(), seconds(10)));
  EXPECT_FALSE(KillProcess(processes(), victim.Id(), 0));
  EXPECT_TRUE(processes().WaitForEnd(victim.Id(), milliseconds(0)));
  EXPECT_TRUE(RunningCopies(processes(), victim.Path()).empty());
  EXPECT_FALSE(processes().MainModulePath(victim.Id()));
  EXPECT_EQ(RunningCopies(processes(), copy.Path()), std::vector<uint32_t>{copy.Id()});
}

TEST_F(ProcessesTest, RefusesTheSystemAndItself) {
  for (const uint32_t id : {0U, 1U, processes().OwnId(), 0xFFFFFFFFU}) {
    EXPECT_FALSE(KillProcess(processes(), id, 0)) << id;
  }
}

class ShellTest : public PlatformTest {
 protected:
  Shell& shell() { return platform().shell(); }
};

TEST_F(ShellTest, RunsOnlyPrograms) {
  EXPECT_FALSE(shell().FindExecutable(Path("missing.htm")));
  EXPECT_FALSE(shell().Run(Path("missing.exe"), "0"));
  EXPECT_FALSE(shell().Run(Scratch(), "0"));
  EXPECT_FALSE(shell().Run(Make("text.exe", "this is no program\n"), "0"));
}

TEST_F(ShellTest, HandsTheArgumentOverAsItIs) {
  const std::string path = Make("a program.exe", EmbeddedBytes("quarnel-sample-program"));
  // The program takes what is no number for 0 and ends at once. A command interpreter would make
  // a number of these, and it would stay.
  for (const std::string_view argument : {"$(echo 60)", "`echo 60`", "$((60))", "''60"}) {
    ASSERT_TRUE(shell().Run(path, argument));
    EXPECT_TRUE(Eventually([&] { return RunningCopies(platform().processes(), path).empty(); }))
        << argument;
  }
}

TEST_F(ShellTest, FindsTheTargetsOfShortcuts) {
  const std::string target = Make("target \xC3\xA4.txt");
  EXPECT_EQ(shell().ShortcutTarget(Make("good.lnk", MakeShortcut(target))), target);
  Make("torn.lnk", MakeShortcut(target).substr(0, 100));
  Make("text.lnk", target);
  for (const std::string_view name : {"torn.lnk", "text.lnk", "missing.lnk"}) {
    EXPECT_FALSE(shell().ShortcutTarget(Path(name))) << name;
  }
}

TEST_F(ShellTest, DoesNotRegisterWhatIsNoComponent) {
  Make("text.dll", "this is no component");
  for (const bool registerIt : {true, false}) {
    EXPECT_FALSE(RegisterComponent(shell(), Path("missing.dll"), registerIt));
    EXPECT_FALSE(RegisterComponent(shell(), Path("text.dll"), registerIt));
  }
}

TEST_F(ShellTest, AnnouncesThisProcessToOthers) {
  const auto other = OpenPlatform(machineFolder());
  Desktop& seer = other->desktop();
  Desktop& desktop = platform().desktop();
  EXPECT_FALSE(seer.FindWindow("TestClass", "A title"));

  desktop.Announce("TestClass", "A title");
  const auto window = seer.FindWindow("TestClass", "A title");
  ASSERT_TRUE(window);
  EXPECT_FALSE(seer.FindWindow("TestClass", "A tit"));
  EXPECT_FALSE(seer.FindWindow("TestClass", "a title"));
  EXPECT_FALSE(seer.FindWindow("OtherClass", "A title"));

  EXPECT_FALSE(desktop.TakeForwardRequest());
  // The clock of file times may move in such steps.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  seer.BringForward(*window);
  EXPECT_TRUE(Eventually([&] { return desktop.TakeForwardRequest(); }));
  EXPECT_FALSE(desktop.TakeForwardRequest());

  desktop.Announce("TestClass", "New \xC3\xA4");
  EXPECT_FALSE(seer.FindWindow("TestClass", "A title"));
  EXPECT_TRUE(seer.FindWindow("TestClass", "New \xC3\xA4"));
  seer.Announce("TestClass", "Two");
  ASSERT_TRUE(seer.FindWindow("TestClass", "Two"));
  EXPECT_NE(seer.FindWindow("TestClass", "Two"), seer.FindWindow("TestClass", "New \xC3\xA4"));

  desktop.Announce("TestClass", "");
  EXPECT_FALSE(seer.FindWindow("TestClass", "New \xC3\xA4"));
}

TEST(BrowserWindows, AreToldByTheirClass) {
  EXPECT_TRUE(IsBrowserWindowClass("ieframe") && IsBrowserWindowClass("ExploreWClass"));
  EXPECT_FALSE(IsBrowserWindowClass("IEFrame2") || IsBrowserWindowClass(""));
}

}  // namespace
}  // namespace quarnel
