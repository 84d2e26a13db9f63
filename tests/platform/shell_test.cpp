#include "platform/shell.h"

#include "platform/shortcut.h"
#include "support/machine_in.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"
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

// A shell whose answers are set.
struct ScriptedShell : Shell {
  std::optional<std::string> browser = "browser";
  bool runs = true;
  std::string ran, called;

  std::optional<std::string> FindExecutable(std::string_view path) override {
    ran = path;
    return browser;
  }
  bool Run(std::string_view program, std::string_view argument) override {
    ran = std::string(program) + " " + std::string(argument);
    return runs;
  }
  std::optional<std::string> ShortcutTarget(std::string_view) override { return std::nullopt; }
  bool CallRegistrationEntry(std::string_view path, std::string_view entry) override {
    called = std::string(path) + " " + std::string(entry);
    return true;
  }
};

TEST(RegisterComponent, CallsTheEntryForTheWish) {
  ScriptedShell shell;
  EXPECT_TRUE(RegisterComponent(shell, "C:\\a.dll", true));
  EXPECT_EQ(shell.called, "C:\\a.dll DllRegisterServer");
  EXPECT_TRUE(RegisterComponent(shell, "C:\\a.dll", false));
  EXPECT_EQ(shell.called, "C:\\a.dll DllUnregisterServer");
}

struct OtherTemp : MachineIn {
  OtherTemp(Machine& machine, std::optional<std::string> folder)
      : MachineIn(machine, ""), temp(std::move(folder)) {}
  std::optional<std::string> TempFolder() override { return temp; }
  std::optional<std::string> temp;
};

TEST_F(ShellTest, OpensAnAddressOrSaysWhyNot) {
  const struct {
    std::optional<std::string> temp;
    std::string_view text, title;
    MessageIcon icon;
    bool hasBrowser = true, runs = true, leavesFile = false;
  } cases[] = {
      {std::nullopt, "Sorry! file  cannot be created.", "Title", MessageIcon::kInformation},
      {Path("missing"), "Sorry! file  cannot be created.", "Title", MessageIcon::kInformation},
      {Scratch(), "Could not find associated application!", "Browser Not Found",
       MessageIcon::kExclamation, false, true, true},
      {Scratch(), "Page not Opened.", "URL Failed", MessageIcon::kNone, true, false},
      {Scratch(), "", "", MessageIcon::kNone},
  };
  for (const auto& test : cases) {
    ScriptedShell shell;
    if (!test.hasBrowser) shell.browser.reset();
    shell.runs = test.runs;
    OtherTemp temp(machine(), test.temp);
    TestHost host;
    OpenInBrowser(shell, temp, files(), host, "http://a.example/?x=1&y", "htm", "Title");
    ASSERT_EQ(host.messages.size(), test.text.empty() ? 0U : 1U) << test.text;
    if (!host.messages.empty()) {
      EXPECT_EQ(host.messages[0].text, test.text);
      EXPECT_EQ(host.messages[0].title, test.title);
      EXPECT_EQ(host.messages[0].icon, test.icon);
    } else {
      EXPECT_EQ(shell.ran, "browser http://a.example/?x=1&y");
    }
    EXPECT_EQ(files().Stat(Path("temphtm.htm")).has_value(), test.leavesFile) << test.text;
    IgnoringErrors([&] { files().Delete(Path("temphtm.htm")); });
  }
}

}  // namespace
}  // namespace quarnel
