// What lies on a machine folder and is no plain file, and what changes while it is read.

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "core/existing_files.h"
#include "platform/machine_folder.h"
#include "scan/deep_scan.h"
#include "scan/file_scan.h"
#include "scan/memory_scan.h"
#include "scan/scan_fixture.h"
#include "scan/watched_files.h"
#include "signatures/md5.h"
#include "support/listed_processes.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class UnreadTest : public ScanTest {
 protected:
  UnreadTest() { files().CreateFolder(Path("tree")); }

  fs::path HostOf(std::string_view name) { return HostPathOf(machineFolder(), Path(name)); }
  std::vector<std::string> Unreads() {
    std::vector<std::string> all;
    for (const UnreadItem& item : unread.Items()) {
      all.push_back(item.kind + " " + item.name.substr(item.name.rfind('\\') + 1));
    }
    return all;
  }

  HashPool pool{2};
};

TEST_F(UnreadTest, TheDeepScanHashesBehindLinksAndTellsOfTheRest) {
  Make("target.dat", "bad");
  Make("folder\\x.dat", "bad");
  fs::create_symlink(HostOf("target.dat"), HostOf("tree\\link.dat"));
  fs::create_symlink("nowhere", HostOf("tree\\dangling.dat"));
  fs::create_directory_symlink(HostOf("folder"), HostOf("tree\\away"));
  // The path is the test's own.  NOLINTNEXTLINE(cert-env33-c)
  ASSERT_EQ(std::system(("mkfifo " + HostOf("tree\\pipe.dat").string()).c_str()), 0);
  Install({.programs = HexText(Md5Of("bad")) + "^1^Bad\n"});
  for (HashPool* hashPool : {static_cast<HashPool*>(nullptr), &pool}) {
    resultsPage.lvwFilesToBeDeleted.Clear();
    resultsPage.sfttvwResults.Clear();
    unread.Clear();
    DeepScan scan(context, hashPool);
    ASSERT_TRUE(scan.LoadSignatureHashText());
    scan.ScanFolder(Path("tree"));
    EXPECT_THAT(Texts(resultsPage.lvwFilesToBeDeleted), ElementsAre(Path("tree\\link.dat")));
    EXPECT_THAT(Unreads(), UnorderedElementsAre("link away", "file dangling.dat", "file pipe.dat"));
  }
}

TEST_F(UnreadTest, AFileThatGrowsIsHashedAsFarAsItWent) {
  const std::string content(600'000, 'x');
  Make("growing.log", content);
  bool grew = false;
  const auto grows = [&] {
    std::ofstream(HostOf("growing.log"), std::ios::app) << std::string(300'000, 'y');
    return false;
  };
  EXPECT_EQ(HashFile(files(), Path("growing.log"), grows, &grew), HexText(Md5Of(content)));
  EXPECT_TRUE(grew);
}

// A file that an earlier phase entered is no new trace, and its twin in letter case is one.
TEST_F(UnreadTest, OfTwoNamesThatDifferInLetterCaseBothAreFound) {
  for (const char* name : {"tree\\A.dat", "tree\\\xC3\x84.dat"}) Make(name, "bad");
  std::ofstream(HostOf("tree\\A.dat").parent_path() / "a.dat") << "bad";
  Install({.programs = HexText(Md5Of("bad")) + "^1^Bad\n"});
  for (const char* name : {"tree\\A.dat", "tree\\\xC3\xA4.dat"}) {
    resultsPage.lvwFilesToBeDeleted.Add(FileTrace{.path = Path(name)}.Row());
  }
  DeepScan scan(context, nullptr);
  ASSERT_TRUE(scan.LoadSignatureHashText());
  scan.ScanFolder(Path("tree"));
  EXPECT_THAT(Texts(resultsPage.lvwFilesToBeDeleted),
              ElementsAre(Path("tree\\A.dat"), Path("tree\\\xC3\xA4.dat"), Path("tree\\a.dat")));
}

TEST_F(UnreadTest, OfTwoNamesThatDifferInLetterCaseTheRunningOneIsInspected) {
  Make("tree\\B.exe", "good");
  std::ofstream(HostOf("tree\\B.exe").parent_path() / "b.exe") << "bad";
  Install({.programs = HexText(Md5Of("bad")) + "^1^Bad\n"});
  ListedProcesses processes;
  processes.records = {{0, 0, "idle"}, {1, 0, Path("tree\\b.exe")}};
  MemoryScan scan(context, processes, [](const MemoryAlert&) {});
  scan.MemoryItemsInspection(page.pbgMain);
  EXPECT_THAT(Texts(resultsPage.lvwFilesToBeDeleted), ElementsAre(Path("tree\\b.exe")));
}

// A link that leads to itself stands for whatever cannot be looked at.
TEST_F(UnreadTest, WhatCannotBeLookedAtIsNotMissing) {
  fs::create_directory_symlink("loop", HostOf("loop"));
  WatchedFiles watched(files(), unread);
  EXPECT_FALSE(FileExists(watched, Path("loop\\file.txt")));
  EXPECT_FALSE(FileExists(watched, Path("nowhere\\file.txt")));
  EXPECT_FALSE(FileExists(watched, Path("missing.txt")));
  EXPECT_FALSE(FileExists(watched, Path("loop\\file.txt")));
  EXPECT_THAT(Unreads(), ElementsAre("file file.txt"));
  EXPECT_TRUE(unread.ScanWasWhole());
}

}  // namespace
}  // namespace quarnel
