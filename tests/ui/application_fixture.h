#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/paths.h"
#include "support/program_fixture.h"
#include "support/test_host.h"
#include "ui/application.h"

namespace quarnel {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// The whole program on a machine with a small signature set and one planted file.
class ApplicationTest : public ProgramTest {
 protected:
  frmMain& Start(StartOptions options = {.showSplash = false, .runWizard = false}) {
    application = std::make_unique<Application>(platform(), host, options);
    EXPECT_TRUE(application->Main());
    return application->MainForm();
  }

  // A setting of the options' section as it is stored.
  std::string Option(std::string_view key) {
    return settings.GetSetting("OptionAndSettings", key, "(absent)");
  }
  void SetOption(std::string_view key, std::string_view text) {
    settings.SaveSetting("OptionAndSettings", key, text);
  }
  bool Ends(const std::function<void()>& action) {
    try {
      action();
    } catch (const ProcessEnded&) {
      return true;
    }
    return false;
  }

  TestHost host;
  std::unique_ptr<Application> application;
};

// Twenty signatures of the planted file, so that something can happen in the middle of a scan.
class RunningScanTest : public ApplicationTest {
 protected:
  RunningScanTest() {
    std::string source;
    for (int i = 0; i < 20; ++i) source += kPlantedLine;
    Install({.files = source});
  }

  // Runs a whole scan with `action` once inside its event processing.
  void ScanWith(frmMain& main, const std::function<void()>& action) {
    host.onEvents = [&, action] {
      if (main.scan.lblFilesFolderInspected.Caption() != "3") return;
      host.onEvents = nullptr;
      action();
    };
    main.scan.ImgStartScanMouseMove.ClickByUser();
  }
  size_t Found(frmMain& main) { return main.results.lvwFilesToBeDeleted.Count(); }
};

}  // namespace quarnel
