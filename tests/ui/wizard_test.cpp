#include "ui/wizard/wizard.h"

#include "core/product.h"
#include "ui/application_fixture.h"

namespace quarnel {
namespace {

class WizardTest : public ApplicationTest {
 protected:
  // What a user clicks on each page, in order.
  using Clicks = std::vector<std::string>;

  void Play(const std::map<std::string, Clicks>& pages) {
    for (const std::string name :
         {"frmWizard1", "frmWizard2", "frmWizard3", "frmWizard7", "frmWizard4"}) {
      host.players[name] = [this, name, pages](Form& form) {
        shown.push_back(name);
        EXPECT_EQ(form.Caption(), "Getting Started with Quarnel");
        const auto page = pages.find(name);
        for (const std::string& click : page == pages.end() ? Clicks{"cmdSkip"} : page->second) {
          form.Find(click)->ClickByUser();
        }
      };
    }
  }
  std::string Stored(std::string_view section, std::string_view key) {
    return settings.GetSetting(section, key, "(absent)");
  }
  void Run(const std::map<std::string, Clicks>& pages) {
    shown.clear();
    Play(pages);
    application = std::make_unique<Application>(platform(), host, StartOptions{});
    RunWizard(application->forms());
  }

  std::vector<std::string> shown;
};

TEST_F(WizardTest, SkipOnEveryPageLeavesTheStoreUntouched) {
  Run({});
  EXPECT_THAT(shown,
              ElementsAre("frmWizard1", "frmWizard2", "frmWizard3", "frmWizard7", "frmWizard4"));
  EXPECT_TRUE(IsFirstStart(settings));
  const std::string store = "Software\\VB and VBA Program Settings\\Quarnel";
  std::unique_ptr<RegistryKey> key;
  EXPECT_EQ(registry().Open(hive::kCurrentUser, store, registry_access::kRead, key),
            RegistryStatus::kFileNotFound);
}

TEST_F(WizardTest, NextWritesTheAnswers) {
  Run({{"frmWizard1", {"cmdNext"}},
       {"frmWizard2", {"optYesNo(1)", "cmdNext"}},
       {"frmWizard3", {"optYesNo(1)", "cmdNext"}},
       {"frmWizard7", {"optYesNo(1)", "cmdNext"}},
       {"frmWizard4", {"cmdEnterapplicationNow"}}});
  EXPECT_EQ(Stored("LiveUpdate", "Notification"), "No");
  for (const std::string_view key : {"optMemorySheildOn", "chkDisplayHijakRestoreAlerts", "Sheild",
                                     "chkStartupShield", "optLorrigrid"}) {
    EXPECT_EQ(Option(key), "0") << key;
  }
  EXPECT_EQ(Option("chkAutomaticScanYesOrNo"), "1");

  Run({{"frmWizard2", {"cmdNext"}},
       {"frmWizard3", {"cmdNext"}},
       {"frmWizard7", {"cmdNext"}},
       {"frmWizard4", {"chkScanSchedule", "cmdExit"}}});
  EXPECT_EQ(Stored("LiveUpdate", "Notification"), "Yes");
  EXPECT_EQ(Option("Sheild"), "1");
  EXPECT_EQ(Option("optLorrigrid"), "1");
  EXPECT_EQ(Option("chkAutomaticScanYesOrNo"), "0");  // its click writes at once
}

TEST_F(WizardTest, BackGoesBackAndExitLeaves) {
  int visits = 0;
  Play({});
  // Before the first page there is nothing to go back to.
  host.players["frmWizard1"] = [&](Form& form) {
    shown.emplace_back("frmWizard1");
    form.Find(shown.size() == 1 ? "cmdBack" : "cmdNext")->ClickByUser();
  };
  host.players["frmWizard2"] = [&](Form& form) {
    shown.emplace_back("frmWizard2");
    form.Find(++visits == 1 ? "cmdBack" : "cmdExit")->ClickByUser();
  };
  application = std::make_unique<Application>(platform(), host, StartOptions{});
  RunWizard(application->forms());
  EXPECT_THAT(shown,
              ElementsAre("frmWizard1", "frmWizard1", "frmWizard2", "frmWizard1", "frmWizard2"));
  // A page that is closed without a button leaves as well.
  shown = {"before"};
  host.players["frmWizard2"] = [&](Form& form) { form.Close(UnloadMode::kUser); };
  RunWizard(application->forms());
  EXPECT_THAT(shown, ElementsAre("before", "frmWizard1"));
}

TEST_F(WizardTest, RunsBeforeTheWindowAtTheFirstStartOnly) {
  Play({});
  const auto start = [&] {
    shown.clear();
    application = std::make_unique<Application>(platform(), host, StartOptions{});
    host.players["frmWizard1"] = [this](Form& form) {
      shown.emplace_back("frmWizard1");
      EXPECT_FALSE(application->MainForm().IsLoaded());
      EXPECT_TRUE(platform().desktop().FindWindow(kWindowClass, form.Caption()));
      form.Find("cmdExit")->ClickByUser();
    };
    EXPECT_TRUE(application->Main());
  };
  start();
  EXPECT_THAT(shown, ElementsAre("frmWizard1"));
  EXPECT_TRUE(application->MainForm().Visible());
  EXPECT_TRUE(platform().desktop().FindWindow(kWindowClass, "Quarnel v3.0.4"));
  application.reset();
  start();
  EXPECT_TRUE(shown.empty());
}

TEST_F(WizardTest, LearnMoreShowsThePageOfTheProgramsFolder) {
  Play({});
  std::vector<std::string> pages;
  for (const std::string name : {"frmWizard2", "frmWizard3", "frmWizard7"}) {
    host.players[name] = [&](Form& form) {
      form.Find("lblLearnMore")->ClickByUser();
      pages.push_back(application->forms().spywareDefinitions->WebBrowser1.Location());
      form.Find("cmdNext")->ClickByUser();
    };
  }
  application = std::make_unique<Application>(platform(), host, StartOptions{});
  RunWizard(application->forms());
  const std::string folder = GetPathWithSlash(machine().ProgramFolder());
  EXPECT_THAT(pages,
              ElementsAre(folder + "sd.html", folder + "ag.html", folder + "lorrigrid.html"));
  EXPECT_FALSE(application->forms().spywareDefinitions.IsLoaded());
}

}  // namespace
}  // namespace quarnel
