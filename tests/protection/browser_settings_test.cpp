#include "protection/browser_settings.h"

#include <gmock/gmock.h>

#include "core/paths.h"
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
  std::string prompt;

  std::optional<std::string> InputBox(std::string_view asked, std::string_view title,
                                      std::string_view initial) override {
    prompt = std::string(asked) + "|" + std::string(title);
    return type(std::string(initial));
  }
};

// Settings by their places in the table.
enum : size_t { kHome, kSearchPage, kLocal, kBar, kBarOfAll, kUrl, kStartOfAll, kMozilla = 19 };

// The page and its guard on a bare form, on a machine whose browser has no settings at first.
class BrowserSettingsTest : public PlatformTest {
 protected:
  BrowserSettingsTest() {
    for (size_t i = 0; i < table.size(); ++i) Forget(i);
    DeleteFiles();
  }
  ~BrowserSettingsTest() override { DeleteFiles(); }

  void DeleteFiles() {
    for (const std::string& path : {baselines, verdicts}) {
      IgnoringErrors([&] { files().Delete(path); });
    }
  }
  void Forget(size_t i) { DeleteValue(registry(), table[i].hive, table[i].key, table[i].value); }
  void Set(size_t i, std::string_view text) {
    RegCreateKeyValue(registry(), table[i].hive, table[i].key, table[i].value, std::string(text));
  }
  std::string Get(size_t i) {
    return QueryText(registry(), table[i].hive, table[i].key, table[i].value);
  }
  // All settings, as "v0" to "v19", captured and listed.
  void CaptureAll() {
    for (size_t i = 0; i < table.size(); ++i) Set(i, "v" + std::to_string(i));
    browser.LoadBrowserSettings();
  }
  // As after an earlier change: the next one is handled.
  void Precede() { browser.Pending() = {.newValue = "a", .storedValue = "b"}; }

  std::span<const BrowserSetting> table = BrowserSettingTable();
  std::string baselines = GetPathWithSlash(machine().ProgramFolder()) + "QS_BHR.ini";
  std::string verdicts = GetPathWithSlash(machine().ProgramFolder()) + "QS_AB_BHR.ini";
  TypingHost host;
  RecordingWindow window;
  Settings settings{registry(), "QuarnelTest"};
  ErrorLog log{files(), machine(), host, "QuarnelTest"};
  Form form{host, "frmMain"};
  BrowserSettingsPage page{form};
  ListView& list = page.lvwBrowserHijackRestore;
  BrowserSettings browser{{page, {platform(), host, settings, log}, window}};
};

TEST_F(BrowserSettingsTest, FirstSightIsCapturedOnceAndListed) {
  settings.SaveSetting("BHJ", "Search Bar", "http://lost.example/");
  settings.SaveSetting("BHJ", "Serach Bar (all users)", "http://kept.example/");
  CaptureAll();
  ASSERT_EQ(list.Count(), 19U) << "the first two share a row";
  const ListRow home = list.At(0);
  EXPECT_EQ(home.text, "Home Page");
  EXPECT_THAT(home.subItems, ElementsAre("v0", DefaultOf(table[kHome], machine()), table[0].help,
                                         DefaultOf(table[kHome], machine())));
  EXPECT_EQ(list.At(kBar - 1).SubItem(2), DefaultOf(table[kBar], machine()));
  EXPECT_EQ(list.At(kBarOfAll - 1).SubItem(2), "http://kept.example/");
  EXPECT_THAT(std::string(list.At(kLocal - 1).SubItem(4)), EndsWith("\\blank.htm"));
  const std::string captured = Read(baselines);
  EXPECT_THAT(captured, HasSubstr("[BHR Settings]\r\nStart Page=v0\r\nSearch Page=v1\r\n"));
  EXPECT_THAT(captured, HasSubstr("\r\nMozilla=v19\r\n"));
  EXPECT_EQ(list.SelectedRow(), 0U);
  EXPECT_EQ(page.lblSetting.Caption() + page.txtCurrentSetting.Text(), "Home Pagev0");
  EXPECT_EQ(page.txtSetting.Text(), table[0].help);

  // What changes later is no baseline.
  Set(kUrl, "later");
  browser.LoadBrowserSettings();
  EXPECT_EQ(Read(baselines), captured);
  EXPECT_EQ(list.At(kUrl - 1).SubItem(1), "v5");
}

TEST_F(BrowserSettingsTest, EmptySettingsAreNeitherListedNorGuarded) {
  browser.LoadBrowserSettings();
  EXPECT_TRUE(list.Empty());
  EXPECT_EQ(page.lblSetting.Caption() + page.txtCurrentSetting.Text(), "");
  EXPECT_THAT(Read(baselines), HasSubstr("\r\nMozilla=\r\n"));
  page.lblChangeRestoreURL.ClickByUser();
  EXPECT_EQ(host.prompt, "");
  // They have a baseline from now on, which is empty.
  Precede();
  CaptureAll();
  EXPECT_TRUE(list.Empty());

  // Without a home page the search page goes by its name, and is compared as the home page.
  files().Delete(baselines);
  Forget(kHome);
  browser.LoadBrowserSettings();
  EXPECT_EQ(list.At(0).text + std::string(list.At(0).SubItem(1)), "Home Pagev1");
  Set(kSearchPage, "changed");
  browser.CheckBrowserSettings();
  EXPECT_THAT(window.asked, IsEmpty());
}

TEST_F(BrowserSettingsTest, FirstChangedSettingInTheListsOrderIsHandled) {
  CaptureAll();
  list.Add({.text = "no setting", .subItems = {"v"}});
  struct Case {
    size_t setting;
    std::string now;
    std::string label;  // empty: nothing is handled
  };
  const Case cases[] = {
      {kHome, "v0", ""},
      {kHome, "V0", "Home Page"},
      {kSearchPage, "changed", ""},
      {kUrl, "changed", "Search URL"},
      {kMozilla, "", "Mozilla"},
  };
  for (const auto& [setting, now, label] : cases) {
    SCOPED_TRACE(std::to_string(setting) + now);
    window.asked.clear();
    Set(setting, now);
    if (now.empty()) Forget(setting);
    Precede();
    browser.CheckBrowserSettings();
    const PendingBrowserChange& pending = browser.Pending();
    EXPECT_EQ(window.asked.size(), label.empty() ? 0U : 1U);
    EXPECT_EQ(pending.label, label);
    if (!label.empty()) {
      EXPECT_EQ(pending.newValue, now);
      EXPECT_EQ(pending.storedValue, "v" + std::to_string(setting));
      EXPECT_EQ(pending.key + pending.valueName,
                std::string(table[setting].key) + std::string(table[setting].value));
    }
    Set(setting, "v" + std::to_string(setting));
  }
  // One in each pass.
  Set(kMozilla, "b");
  Set(kLocal, "a");
  browser.CheckBrowserSettings();
  EXPECT_EQ(browser.Pending().label, "Local Page");
}

TEST_F(BrowserSettingsTest, RecordOfTheLastChangeDecidesWhetherTheNextIsHandled) {
  CaptureAll();
  Set(kHome, "http://hijack.example/");
  browser.CheckBrowserSettings();
  EXPECT_THAT(window.asked, IsEmpty());
  EXPECT_EQ(browser.Pending().label, "");
  browser.Pending() = {.newValue = "SAME", .storedValue = "same"};
  browser.CheckBrowserSettings();
  EXPECT_THAT(window.asked, IsEmpty());
  Precede();
  browser.CheckBrowserSettings();
  EXPECT_THAT(window.asked, ElementsAre("browser alert"));
}

TEST_F(BrowserSettingsTest, VerdictIsOnTheAddressWhereverItStands) {
  CaptureAll();
  browser.Remember("http://bad.example/?a=1", url_verdict::kBlock);
  browser.Remember("http://good.example/", url_verdict::kAllow);
  for (const size_t setting : {kHome, kStartOfAll}) {
    Precede();
    Set(setting, "http://bad.example/?a=1");
    browser.CheckBrowserSettings();
    EXPECT_EQ(Get(setting), "v" + std::to_string(setting));
  }
  const std::string before = Read(baselines);
  for (int pass = 0; pass < 2; ++pass) {
    Set(kHome, "http://good.example/");
    browser.CheckBrowserSettings();
    EXPECT_EQ(browser.Pending().newValue, "http://good.example/");
  }
  EXPECT_EQ(Get(kHome), "http://good.example/");
  EXPECT_EQ(Read(baselines), before);
  EXPECT_THAT(window.asked, IsEmpty());
}

TEST_F(BrowserSettingsTest, RestoreWritesWhatIsTickedButTheHomePage) {
  CaptureAll();
  page.imgRestore.ClickByUser();
  page.chlSelectAllBHR.ClickByUser();
  page.imgRestore.ClickByUser();
  ASSERT_EQ(host.messages.size(), 2U);
  EXPECT_EQ(host.messages[0].text,
            "0 Internet Explorer brwoser settings were changed sucessfully.");
  EXPECT_THAT(host.messages[1].text, HasSubstr("19 Internet"));
  EXPECT_EQ(Get(kHome), "v0");
  EXPECT_EQ(Get(kSearchPage), "v1");
  for (size_t i = kLocal; i < table.size(); ++i) {
    EXPECT_EQ(Get(i), DefaultOf(table[i], machine()));
    EXPECT_EQ(list.At(i - 1).SubItem(1), Get(i));
  }
  EXPECT_THAT(Read(baselines), HasSubstr("Start Page=v0\r\n"));
  EXPECT_THAT(Read(baselines), HasSubstr("Home Page=" + DefaultOf(table[kHome], machine())));
  EXPECT_EQ(page.txtCurrentSetting.Text(), DefaultOf(table[kHome], machine()));
}

TEST_F(BrowserSettingsTest, RestoreSettingIsTypedAnew) {
  CaptureAll();
  std::string offered;
  // The list is filled anew while the question is open.
  host.type = [&](const std::string& initial) {
    offered = initial;
    browser.LoadBrowserSettings();
    return std::optional<std::string>("http://mine.example/");
  };
  page.lblChangeRestoreURL.ClickByUser();
  EXPECT_EQ(offered, DefaultOf(table[kHome], machine()));
  EXPECT_THAT(host.prompt, HasSubstr("setting for Home Page. The URL in the field below"));
  EXPECT_EQ(settings.GetSetting("BHJ", "Start Page", ""), "http://mine.example/");
  EXPECT_EQ(page.txtRestoreSettingTo.Text(), "http://mine.example/");
  ASSERT_EQ(host.messages.size(), 1U);
  EXPECT_EQ(host.messages[0].title, "Internet Explorer Restore Setting Changed");
  EXPECT_THAT(host.messages[0].text,
              HasSubstr("for Search Page has been changed to http://mine.example/. This"));

  // Nothing new, nothing at all, and no answer change nothing.
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
  browser.LoadBrowserSettings();
  EXPECT_EQ(list.At(kBar - 1).SubItem(2), DefaultOf(table[kBar], machine()));
}

TEST_F(BrowserSettingsTest, AddressesWithAVerdictAreListedAndForgotten) {
  const ListView& urls = page.lvwAllowedBlockedURLs;
  browser.LoadAllowedBlockedURLs();
  EXPECT_TRUE(urls.Empty());
  browser.Remember("http://bad.example/", url_verdict::kBlock);
  browser.Remember("http://good.example/", url_verdict::kAllow);
  browser.Remember("http://asks.example/?q=1", url_verdict::kBlock);
  browser.Remember("", url_verdict::kBlock);
  browser.LoadAllowedBlockedURLs();
  std::vector<std::string> shown;
  for (const ListRow& row : urls.Rows()) {
    EXPECT_EQ(row.look.colour, row.SubItem(1) == "Blocked" ? Colour::kRed : Colour::kDarkGreen);
    shown.push_back(row.text + " " + std::string(row.SubItem(1)));
  }
  // An ini file ends a key at the first "=".
  EXPECT_THAT(shown, ElementsAre("http://bad.example/ Blocked", "http://good.example/ Allowed",
                                 "http://asks.example/?q Allowed", " Blocked"));
  page.imgListOfAllowedBlockedURLs.ClickByUser();
  page.chlSelectAllBHR.ClickByUser();
  page.lvwAllowedBlockedURLs.CheckByUser(0, false);
  page.imgRemoveAllowRestoreURLs.ClickByUser();
  ASSERT_EQ(urls.Count(), 1U);
  EXPECT_EQ(urls.At(0).text, "http://bad.example/");
}

TEST_F(BrowserSettingsTest, StatesAreReadAndNothingIsWritten) {
  CaptureAll();
  files().Delete(baselines);
  Set(kUrl, "now");
  const auto states = browser.States();
  EXPECT_FALSE(Exists(baselines));
  ASSERT_EQ(states.size(), table.size());
  EXPECT_EQ(states[kSearchPage].name, "Search Page");
  EXPECT_EQ(states[kUrl].now + "|" + states[kUrl].baseline, "now|");
  EXPECT_EQ(states[kUrl].original, table[kUrl].original);
}

}  // namespace
}  // namespace quarnel
