#include "protection/browser_settings.h"

#include <gmock/gmock.h>

#include "support/browser_on_machine.h"
#include "support/platform_fixture.h"
#include "support/recording_window.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

// A user who types one line.
class TypingHost : public TestHost {
 public:
  std::function<std::optional<std::string>(const std::string& initial)> type;
  std::optional<std::string> InputBox(std::string_view, std::string_view,
                                      std::string_view initial) override {
    return type(std::string(initial));
  }
};

// Settings by their places in the table.
enum : size_t { kHome, kSearchPage, kLocal, kBar, kBarOfAll, kUrl, kStartOfAll, kMozilla = 19 };

// The page and its guard on a bare form.
class BrowserSettingsTest : public PlatformTest {
 protected:
  // All settings, as "v0" to "v19", captured and listed.
  void CaptureAll() {
    for (size_t i = 0; i < BrowserSettingTable().size(); ++i) {
      browser.Set(i, "v" + std::to_string(i));
    }
    guard.LoadBrowserSettings();
  }
  // As after an earlier change: the next one is handled.
  void Precede() { guard.Pending() = {.newValue = "a", .storedValue = "b"}; }

  BrowserOnMachine browser{platform()};
  TypingHost host;
  RecordingWindow window;
  Settings settings{registry(), "QuarnelTest"};
  ErrorLog log{files(), machine(), host, "QuarnelTest"};
  Form form{host, "frmMain"};
  BrowserSettingsPage page{form};
  ListView& list = page.lvwBrowserHijackRestore;
  BrowserSettings guard{{page, {platform(), host, settings, log}, window}};
};

TEST_F(BrowserSettingsTest, FirstSightIsCapturedOnceAndListed) {
  settings.SaveSetting("BHJ", "Serach Bar (all users)", "http://kept.example/");
  CaptureAll();
  ASSERT_EQ(list.Count(), 19U) << "the first two share a row";
  EXPECT_THAT(list.At(0).subItems, ElementsAre("v0", browser.Default(kHome), page.txtSetting.Text(),
                                               browser.Default(kHome)));
  EXPECT_EQ(list.At(kBarOfAll - 1).SubItem(2), "http://kept.example/");
  EXPECT_THAT(std::string(list.At(kLocal - 1).SubItem(4)), EndsWith("\\blank.htm"));
  EXPECT_EQ(page.lblSetting.Caption() + page.txtCurrentSetting.Text(), "Home Pagev0");
  const std::string captured = browser.Baselines();
  EXPECT_THAT(captured, HasSubstr("[BHR Settings]\r\nStart Page=v0\r\nSearch Page=v1\r\n"));
  EXPECT_THAT(captured, EndsWith("\r\nMozilla=v19\r\n"));
  // What changes later is no baseline.
  browser.Set(kUrl, "later");
  guard.LoadBrowserSettings();
  EXPECT_EQ(browser.Baselines(), captured);
  browser.DeleteFiles();
  const BrowserSettings::State state = guard.States().at(kUrl);
  EXPECT_EQ(state.name + state.now + state.baseline, "Search URLlater");
  EXPECT_ANY_THROW(browser.Baselines()) << "a look writes nothing";
}

TEST_F(BrowserSettingsTest, EmptySettingsAreNeitherListedNorGuarded) {
  guard.LoadBrowserSettings();
  page.lblChangeRestoreURL.ClickByUser();
  EXPECT_EQ(page.lblSetting.Caption(), "");
  Precede();
  CaptureAll();
  guard.CheckBrowserSettings();
  EXPECT_TRUE(list.Empty()) << "their baselines are empty from now on";
  // Without a home page the search page goes by its name, and is compared as the home page.
  browser.DeleteFiles();
  browser.Forget(kHome);
  guard.LoadBrowserSettings();
  EXPECT_EQ(list.At(0).text + std::string(list.At(0).SubItem(1)), "Home Pagev1");
  browser.Set(kSearchPage, "changed");
  guard.CheckBrowserSettings();
  EXPECT_THAT(window.asked, IsEmpty());
}

TEST_F(BrowserSettingsTest, FirstChangeInTheListsOrderIsHandledBehindAnother) {
  CaptureAll();
  list.Add({.text = "no setting", .subItems = {"v"}});
  struct Case {
    size_t setting;
    std::string now;
    std::string label;  // empty: nothing is handled
    std::string newBefore = "a";
    std::string storedBefore = "b";
  };
  const Case cases[] = {
      {kHome, "v0", ""},
      {kHome, "V0", "Home Page"},
      {kHome, "changed", "", "", ""},
      {kHome, "changed", "", "SAME", "same"},
      {kSearchPage, "changed", ""},
      {kUrl, "changed", "Search URL"},
      {kMozilla, "", "Mozilla"},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(std::to_string(test.setting) + test.now + test.newBefore);
    window.asked.clear();
    guard.Pending() = {.newValue = test.newBefore, .storedValue = test.storedBefore};
    const std::string before = "v" + std::to_string(test.setting);
    browser.Set(test.setting, test.now);
    if (test.now.empty()) browser.Forget(test.setting);
    guard.CheckBrowserSettings();
    browser.Set(test.setting, before);
    EXPECT_EQ(window.asked.size(), test.label.empty() ? 0U : 1U);
    EXPECT_EQ(guard.Pending().label, test.label);
    if (test.label.empty()) continue;
    EXPECT_EQ(guard.Pending().newValue + guard.Pending().storedValue, test.now + before);
    guard.Undo(guard.Pending());
    EXPECT_EQ(browser.Get(test.setting), before);
  }
  browser.Set(kMozilla, "b");
  browser.Set(kLocal, "a");
  guard.CheckBrowserSettings();
  EXPECT_EQ(guard.Pending().label, "Local Page");
}

TEST_F(BrowserSettingsTest, VerdictIsOnTheAddressWhereverItStands) {
  CaptureAll();
  EXPECT_TRUE(page.lvwAllowedBlockedURLs.Empty());
  guard.Remember("http://bad.example/?a=1", url_verdict::kBlock);
  guard.Remember("http://worse.example/", url_verdict::kBlock);
  guard.Remember("http://good.example/", url_verdict::kAllow);
  for (const size_t setting : {kHome, kStartOfAll}) {
    Precede();
    browser.Set(setting, "http://bad.example/?a=1");
    guard.CheckBrowserSettings();
    EXPECT_EQ(browser.Get(setting), "v" + std::to_string(setting));
  }
  const std::string before = browser.Baselines();
  for (int pass = 0; pass < 2; ++pass) {
    browser.Set(kHome, "http://good.example/");
    guard.CheckBrowserSettings();
    EXPECT_EQ(guard.Pending().newValue, browser.Get(kHome));
  }
  EXPECT_EQ(browser.Baselines(), before);
  EXPECT_THAT(window.asked, IsEmpty());

  guard.LoadAllowedBlockedURLs();
  std::string shown;
  for (const ListRow& row : page.lvwAllowedBlockedURLs.Rows()) {
    EXPECT_EQ(row.look.colour, row.SubItem(1) == "Blocked" ? Colour::kRed : Colour::kDarkGreen);
    shown.append(row.text).append(" ").append(row.SubItem(1)).append(", ");
  }
  // An ini file ends a key at the first "=".
  EXPECT_EQ(shown,
            "http://bad.example/?a Allowed, http://worse.example/ Blocked, "
            "http://good.example/ Allowed, ");
  page.imgListOfAllowedBlockedURLs.ClickByUser();
  page.chlSelectAllBHR.ClickByUser();
  page.lvwAllowedBlockedURLs.CheckByUser(1, false);
  page.imgRemoveAllowRestoreURLs.ClickByUser();
  EXPECT_EQ(browser.Verdicts(), "[BHR]\r\nhttp://worse.example/=BLOCK\r\n");
  EXPECT_EQ(page.lvwAllowedBlockedURLs.Count(), 1U);
}

TEST_F(BrowserSettingsTest, RestoreWritesWhatIsTickedButTheHomePage) {
  CaptureAll();
  page.imgRestore.ClickByUser();
  page.chlSelectAllBHR.ClickByUser();
  page.imgRestore.ClickByUser();
  EXPECT_EQ(host.messages.at(0).text,
            "0 Internet Explorer brwoser settings were changed sucessfully.");
  EXPECT_THAT(host.messages.at(1).text, HasSubstr("19 Internet"));
  EXPECT_EQ(browser.Get(kHome) + browser.Get(kSearchPage), "v0v1");
  for (size_t i = kLocal; i <= kMozilla; ++i) {
    EXPECT_EQ(browser.Get(i), browser.Default(i));
    EXPECT_EQ(list.At(i - 1).SubItem(1), browser.Get(i));
  }
  EXPECT_THAT(browser.Baselines(), HasSubstr("Start Page=v0\r\n"));
  EXPECT_THAT(browser.Baselines(), HasSubstr("Home Page=" + browser.Default(kHome)));
}

TEST_F(BrowserSettingsTest, RestoreSettingIsTypedAnew) {
  CaptureAll();
  std::string offered;
  // The list is filled anew while the question is open.
  host.type = [&](const std::string& initial) {
    offered = initial;
    guard.LoadBrowserSettings();
    return std::optional<std::string>("http://mine.example/");
  };
  page.lblChangeRestoreURL.ClickByUser();
  EXPECT_EQ(offered, browser.Default(kHome));
  EXPECT_EQ(settings.GetSetting("BHJ", "Start Page", ""), "http://mine.example/");
  EXPECT_EQ(page.txtRestoreSettingTo.Text(), "http://mine.example/");
  EXPECT_THAT(host.messages.at(0).text,
              HasSubstr("for Search Page has been changed to http://mine.example/. This"));
  for (const auto& answer : {std::optional<std::string>("http://mine.example/"),
                             std::optional<std::string>(""), std::optional<std::string>()}) {
    host.type = [&](const std::string&) { return answer; };
    page.lblChangeRestoreURL.ClickByUser();
  }
  EXPECT_EQ(host.messages.size(), 1U);
  // Two settings read it by another name than it is written by.
  host.type = [](const std::string&) { return std::optional<std::string>("http://bar.example/"); };
  list.SelectByUser(kBar - 1);
  page.lblChangeRestoreURL.ClickByUser();
  EXPECT_EQ(list.At(kBar - 1).SubItem(2), "http://bar.example/");
  guard.LoadBrowserSettings();
  EXPECT_EQ(list.At(kBar - 1).SubItem(2), browser.Default(kBar));
}

}  // namespace
}  // namespace quarnel
