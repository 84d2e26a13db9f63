#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/paths.h"
#include "scan/folders.h"
#include "support/platform_fixture.h"
#include "support/signature_set.h"
#include "support/test_host.h"
#include "ui/application.h"

namespace quarnel {

// The whole program on a machine with a small signature set and one planted file.
class ApplicationTest : public PlatformTest {
 protected:
  static constexpr int kProgramFiles = 31;

  ApplicationTest() {
    // On a running system an earlier test may have left settings behind.
    settings.SaveSetting("Registry Status", "ResetValue", "x");
    settings.ResetRegistrySettings();
    IgnoringErrors([&] { files().Delete(SafeListPath(machine())); });
    Install({.files = "Any,Threat,1,31,Planted.txt,,7\n"});
    WriteWholeFile(files(), planted, "x");
  }
  ~ApplicationTest() override {
    IgnoringErrors([&] { files().Delete(planted); });
  }

  void Install(const SignatureSources& sources) { InstallProgramData(files(), machine(), sources); }

  frmMain& Start(StartOptions options = {.showSplash = false, .runWizard = false}) {
    application = std::make_unique<Application>(platform(), host, options);
    EXPECT_TRUE(application->Main());
    return application->MainForm();
  }

  std::vector<std::string> Messages() const {
    std::vector<std::string> texts;
    for (const MessageBox& box : host.messages) texts.push_back(box.text);
    return texts;
  }
  bool Ends(const std::function<void()>& action) {
    try {
      action();
    } catch (const ProcessEnded&) {
      return true;
    }
    return false;
  }

  std::string planted = GetFolder(machine(), kProgramFiles).front() + "Planted.txt";
  Settings settings{registry(), "Quarnel"};
  TestHost host;
  std::unique_ptr<Application> application;
};

// Twenty signatures of the planted file, so that something can happen in the middle of a scan.
class RunningScanTest : public ApplicationTest {
 protected:
  RunningScanTest() {
    std::string source;
    for (int i = 0; i < 20; ++i) source += "Any,Threat,1,31,Planted.txt,,7\n";
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
