#include "core/open_in_browser.h"

#include <gtest/gtest.h>

#include "support/machine_in.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using OpenInBrowserTest = PlatformTest;

// A shell whose answers are set.
struct ScriptedShell : Shell {
  std::optional<std::string> browser = "browser";
  bool runs = true;
  std::string ran;

  std::optional<std::string> FindExecutable(std::string_view path) override {
    ran = path;
    return browser;
  }
  bool Run(std::string_view program, std::string_view argument) override {
    ran = std::string(program) + " " + std::string(argument);
    return runs;
  }
  std::optional<std::string> ShortcutTarget(std::string_view) override { return std::nullopt; }
  bool CallRegistrationEntry(std::string_view, std::string_view) override { return false; }
};

struct OtherTemp : MachineIn {
  OtherTemp(Machine& machine, std::optional<std::string> folder)
      : MachineIn(machine, ""), temp(std::move(folder)) {}
  std::optional<std::string> TempFolder() override { return temp; }
  std::optional<std::string> temp;
};

TEST_F(OpenInBrowserTest, OpensAnAddressOrSaysWhyNot) {
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
