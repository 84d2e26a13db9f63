#include "platform/shell.h"

#include "platform/shortcut.h"
#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

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

// Keeps what it is called with.
struct RecordingShell : Shell {
  std::string called;
  std::optional<std::string> FindExecutable(std::string_view) override { return std::nullopt; }
  bool Run(std::string_view, std::string_view) override { return false; }
  std::optional<std::string> ShortcutTarget(std::string_view) override { return std::nullopt; }
  bool CallRegistrationEntry(std::string_view path, std::string_view entry) override {
    called = std::string(path) + " " + std::string(entry);
    return true;
  }
};

TEST(RegisterComponent, CallsTheEntryForTheWish) {
  RecordingShell shell;
  EXPECT_TRUE(RegisterComponent(shell, "C:\\a.dll", true));
  EXPECT_EQ(shell.called, "C:\\a.dll DllRegisterServer");
  EXPECT_TRUE(RegisterComponent(shell, "C:\\a.dll", false));
  EXPECT_EQ(shell.called, "C:\\a.dll DllUnregisterServer");
}

}  // namespace
}  // namespace quarnel
