#include "scan/deep_scan.h"

#include <gmock/gmock.h>

#include <random>

#include "base/text.h"
#include "scan/scan_fixture.h"
#include "signatures/cipher.h"
#include "signatures/md5.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class DeepScanTest : public ScanTest {
 protected:
  HashPool pool{2};

  void Clear() {
    resultsPage.vbatvwResults.Clear();
    resultsPage.sfttvwResults.Clear();
    resultsPage.lvwFilesToBeDeleted.Clear();
    resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Clear();
    page.lblMD5Scanned.SetCaption("0");
    page.lblMD5Infected.SetCaption("0");
    flags.scanStopRequested = false;
  }
  std::vector<std::string> Scan(const std::string& folder, HashPool* hashPool) {
    DeepScan scan(context, hashPool);
    EXPECT_TRUE(scan.LoadSignatureHashText());
    scan.ScanFolder(folder);
    return Texts(resultsPage.lvwFilesToBeDeleted);
  }
  static std::string Line(std::string_view content, std::string_view threat) {
    return HexText(Md5Of(content)) + "^11^" + std::string(threat) + "\n";
  }
};

TEST_F(DeepScanTest, FindsByHashWhereverAFileLies) {
  const std::string folder = Path("tree");
  Write(folder + "\\z.dat", "bad");
  Write(folder + "\\noextension", "bad");
  Write(folder + "\\sub\\a.dat", "bad");
  Write(folder + "\\sub\\good.dat", "good");
  Write(folder + "\\hidden.sys", "worse");
  files().SetAttributes(folder + "\\hidden.sys",
                        file_attribute::kHidden | file_attribute::kReadOnly);
  Install({.programs = Line("bad", "One") + Line("worse", "Last")});
  EXPECT_THAT(Scan(folder, &pool),
              ElementsAre(folder + "\\hidden.sys", folder + "\\z.dat", folder + "\\sub\\a.dat"));
  EXPECT_THAT(TreeLines(), ElementsAre("Last", "  [Found] - " + folder + "\\hidden.sys", "One",
                                       "  [Found] - " + folder + "\\z.dat",
                                       "  [Found] - " + folder + "\\sub\\a.dat"));
  // The type is fixed, whatever the signature says.
  EXPECT_EQ(resultsPage.vbatvwResults.At(1)->columns.front(), "Adware");
  EXPECT_EQ(page.lblMD5Scanned.Caption(), "6");
  EXPECT_EQ(page.lblMD5Infected.Caption(), "2");
  EXPECT_EQ(page.lblPercentageCompleted.Caption(), "100% Completed.");
}

TEST_F(DeepScanTest, CountsEntriesWithTheirDots) {
  Make("count\\a\\b.txt", "");
  Make("count\\c.txt", "");
  DeepScan scan(context, nullptr);
  EXPECT_EQ(scan.SizeFindFilesAPI(Path("count"), true), 7);
  EXPECT_EQ(scan.SizeFindFilesAPI(Path("count"), false), 14);
}

TEST_F(DeepScanTest, TornSignatureEndsTheFolderAndWhatIsBelowIt) {
  Make("torn\\a\\bad.dat", "bad");
  Make("torn\\a\\below\\good.dat", "good");
  Make("torn\\b\\good.dat", "good");
  WriteWholeFile(files(), DataFolder(machine()) + "QNLESig.dll",
                 "2\r\n" + Encrypt(HexText(Md5Of("bad"))) + "\r\n" +
                     Encrypt(HexText(Md5Of("good")) + "^1^Good") + "\r\n");
  EXPECT_THAT(Scan(Path("torn"), &pool), ElementsAre(Path("torn\\b\\good.dat")));
  EXPECT_THAT(LogText(), HasSubstr("FindFilesAPI"));
  EXPECT_THAT(unread.NotRun(), ElementsAre(HasSubstr("QNLESig.dll, line 2")));
}

// What runs ahead changes nothing that anybody can see.
TEST_F(DeepScanTest, PoolGivesTheRecordsOfThePlainLoop) {
  std::mt19937 random(11);
  std::string source;
  for (int i = 0; i < 1200; ++i) {
    // Some are so large that all others are done before them.
    const size_t size = i % 170 == 5 ? 1'000'000 : random() % 3000;
    std::string content(size, static_cast<char>('a' + i % 26));
    content += std::to_string(i % 150);
    Write(Path("many\\" + std::to_string(random() % 30) + "\\" + std::to_string(i) + ".bin"),
          content);
    if (i % 3 == 0) source += Line(content, "Threat " + std::to_string(i % 7));
  }
  Install({.programs = source});
  const auto records = [&](HashPool* hashPool) {
    Clear();
    std::vector<std::string> all = Scan(Path("many"), hashPool);
    for (std::string& line : TreeLines()) all.push_back(std::move(line));
    for (const ListRow& row : resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.Rows()) {
      all.push_back(row.text + std::string(row.SubItem(1)));
    }
    all.push_back(page.lblMD5Scanned.Caption() + " " + page.lblMD5Infected.Caption() + " " +
                  page.lblStatus.Caption());
    return all;
  };
  const auto plain = records(nullptr);
  EXPECT_GT(plain.size(), 750U);
  EXPECT_EQ(records(&pool), plain);
  // The stop flag too: both end at the same entry.
  const auto stopped = [&](HashPool* hashPool) {
    host.onEvents = [&] {
      if (page.lblMD5Scanned.Caption() == "277") flags.scanStopRequested = true;
    };
    auto result = records(hashPool);
    host.onEvents = nullptr;
    return result;
  };
  const auto plainStopped = stopped(nullptr);
  EXPECT_LT(plainStopped.size(), plain.size());
  EXPECT_EQ(stopped(&pool), plainStopped);
}

TEST_F(DeepScanTest, FileThatAnEarlierPhaseEnteredIsOneTrace) {
  Make("twice\\a.dat", "bad");
  Install({.programs = Line("bad", "One")});
  results.AddSpaywareToResults("key", {ToUpper(Path("twice\\a.dat")), "Trojan", "One"});
  EXPECT_THAT(Scan(Path("twice"), &pool), SizeIs(1));
  EXPECT_EQ(page.lblMD5Infected.Caption(), "0");
}

TEST_F(DeepScanTest, FileThatCannotBeReadIsCounted) {
  Make("gone\\a.dat", "good");
  Make("gone\\b.dat", "bad");
  Install({.programs = Line("bad", "One")});
  // The second file goes away after its folder was listed.
  host.onEvents = [&] {
    if (page.lblScanning.Caption() != Path("gone\\a.dat")) return;
    IgnoringErrors([&] { files().Delete(Path("gone\\b.dat")); });
  };
  EXPECT_THAT(Scan(Path("gone"), nullptr), SizeIs(0));
  host.onEvents = nullptr;
  ASSERT_EQ(unread.Count(), 1U);
  EXPECT_EQ(unread.Items()[0].name, Path("gone\\b.dat"));
}

}  // namespace
}  // namespace quarnel
