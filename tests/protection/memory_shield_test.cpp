#include "protection/memory_shield.h"

#include <gmock/gmock.h>

#include "base/text.h"
#include "core/lines.h"
#include "scan/scan_fixture.h"
#include "scan/watched_files.h"
#include "signatures/cipher.h"
#include "signatures/md5.h"
#include "signatures/signature_files.h"
#include "support/listed_processes.h"
#include "support/recording_window.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The shield beside a scan page at rest, on a machine where a listed program and another one run.
class MemoryShieldTest : public ScanTest {
 protected:
  MemoryShieldTest() {
    page.ImgStopScanMouseMove.SetEnabled(false);
    options.chkMemorySheild.SetValue(1);
    processes.records.push_back({0, 0, "[System Process]"});
    Run("good.exe", "good");
    Run("bad.exe", "bad");
    Install({.programs = HexText(Md5Of("bad")) + "^11^Runner\n"});
    IgnoringErrors([&] { files().Delete(Declined()); });
  }
  ~MemoryShieldTest() override {
    IgnoringErrors([&] { files().Delete(Declined()); });
  }

  void Run(const std::string& name, const std::string& content) {
    const auto id = static_cast<uint32_t>(processes.records.size());
    processes.records.push_back({id, 1, Make(name, content)});
  }
  std::string Declined() { return SignaturePath(machine(), signature_file::kDeclined); }
  size_t Alerts() {
    return static_cast<size_t>(std::count(window.asked.begin(), window.asked.end(), "alert"));
  }

  ListedProcesses processes;
  RecordingWindow window;
  OptionsPage options{form};
  Settings settings{registry(), "Quarnel"};
  WatchedFiles scanFiles{files(), unread};
  ScanContext ofScan{.page = page,
                     .resultsPage = resultsPage,
                     .flags = flags,
                     .unread = unread,
                     .results = results,
                     .files = scanFiles,
                     .machine = machine(),
                     .host = host,
                     .log = log};
  MemoryShield shield{{.scan = ofScan,
                       .processes = processes,
                       .files = files(),
                       .options = options,
                       .settings = settings,
                       .window = window}};
};

TEST_F(MemoryShieldTest, LooksOnlyWhenTheNumberOfProgramsHasChanged) {
  // One whose file is gone, and one that cannot be opened: no concern of the last scan.
  processes.records.push_back({9, 1, Path("gone.exe")});
  EXPECT_TRUE(shield.Inspect());
  EXPECT_EQ(Alerts(), 1U);
  EXPECT_EQ(shield.WhatItDid().inspected, 3U);
  EXPECT_EQ(shield.WhatItDid().unread, 1U);
  EXPECT_EQ(unread.Count(), 0U);
  EXPECT_THAT(TreeLines(), IsEmpty());
  // Another program of the same name and number is not seen.
  Make("good.exe", "bad");
  EXPECT_TRUE(shield.Inspect());
  EXPECT_EQ(shield.WhatItDid().inspected, 3U);
  EXPECT_EQ(shield.WhatItDid().unread, 1U);
  Run("third.exe", "third");
  EXPECT_TRUE(shield.Inspect());
  EXPECT_EQ(Alerts(), 3U);
  // What the user exempts raises none; what he declined does.
  resultsPage.lvwIgnoredSpywares.Add({.text = ToUpper(Path("bad.exe"))});
  shield.Decline({.hash = "H", .typeName = "Trojan", .threatName = "Runner"});
  processes.records.pop_back();
  EXPECT_TRUE(shield.Inspect());
  EXPECT_EQ(Alerts(), 4U);
}

TEST_F(MemoryShieldTest, AnAnswerForAScanEndsTheInspection) {
  Run("second.exe", "bad");
  window.onAsk = [&](std::string_view) { shield.RequestScan(); };
  EXPECT_TRUE(shield.Inspect());
  EXPECT_EQ(Alerts(), 1U);
  EXPECT_TRUE(shield.TakeScanRequest());
  EXPECT_FALSE(shield.TakeScanRequest());
}

TEST_F(MemoryShieldTest, KeepsOutOfScansAndNeedsItsBoxAndFile) {
  const auto expectRest = [&](const char* why) {
    EXPECT_FALSE(shield.Inspect()) << why;
    EXPECT_EQ(shield.WhatItDid().inspected, 0U) << why;
  };
  page.ImgStartScanMouseMove.SetEnabled(false);
  expectRest("a scan begins");
  page.ImgStartScanMouseMove.SetEnabled(true);
  page.ImgStopScanMouseMove.SetEnabled(true);
  expectRest("a scan runs");
  page.ImgStopScanMouseMove.SetEnabled(false);
  options.chkMemorySheild.SetValue(0);
  expectRest("switched off");
  options.chkMemorySheild.SetValue(1);
  files().Delete(SignaturePath(machine(), signature_file::kPrograms));
  expectRest("no signatures");
  EXPECT_FALSE(shield.Watches());
}

TEST_F(MemoryShieldTest, DeclinedProgramsAreListedEnciphered) {
  shield.Decline({.hash = "0A", .typeName = "Trojan", .threatName = "Runner"});
  shield.Decline({.hash = "0B", .typeName = "Adware", .threatName = "Other"});
  const std::string text = Read(Declined());
  EXPECT_EQ(text.find("Runner"), std::string::npos);
  LineReader lines(text);
  Strings plain;
  while (const auto line = lines.Next()) plain.emplace_back(Trim(Decrypt(*line)));
  EXPECT_THAT(plain, ElementsAre("0A^Trojan^Runner", "0B^Adware^Other"));
}

}  // namespace
}  // namespace quarnel
