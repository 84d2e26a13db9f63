#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/paths.h"
#include "platform/machine_folder.h"
#include "recovery/backup_fixture.h"
#include "recovery/file_removal.h"
#include "recovery/removal_record.h"

// Folders that were swapped for links between a scan and its removal.
namespace quarnel {
namespace {

namespace fs = std::filesystem;

class LinksTest : public BackupTest {
 protected:
  fs::path HostOf(std::string_view path) { return HostPathOf(machineFolder(), path); }
  FileOutcome Remove(const std::string& path) {
    FileOutcome outcome;
    if (!removal.DeleteByExtension(path, outcome)) removal.MoveThisFile(path, outcome);
    return outcome;
  }

  RemovalRecord Record() {
    return RemovalRecord({.results = results,
                          .files = files(),
                          .registry = registry(),
                          .processes = platform().processes()},
                         "now");
  }

  FileRemoval removal{{.files = files(),
                       .processes = platform().processes(),
                       .machine = program,
                       .settings = settings,
                       .host = host,
                       .log = log}};
};

TEST_F(LinksTest, NothingBehindALinkIsDeletedOrMoved) {
  fs::create_directory_symlink("real", HostOf(Path("swapped")));
  for (const char* name : {"a.exe", "a.dll", "a.txt"}) {
    const std::string path = Make(Join({"real\\deep", name}, "\\"), "keep");
    EXPECT_TRUE(Remove(Path("swapped\\deep\\") + name).refused) << name;
    EXPECT_EQ(Read(path), "keep");
  }
  EXPECT_NE(Read(log.Path()).find("a folder on the way to it is a link"), std::string::npos);
}

// A folder that leads nowhere stands for any that may not be entered, as another user's.
TEST_F(LinksTest, WhatCannotBeLookedAtIsNotCalledGone) {
  fs::create_directory_symlink("loop", HostOf(Path("loop")));
  AddRow(Path("loop\\a.exe"));
  results.lvwFilesToBeDeleted.SetChecked(0, true);
  RemovalRecord record = Record();
  const RemovalReport report = record.Conclude("");
  EXPECT_EQ(report.traces.front().fate, Fate::kFailed);
  EXPECT_EQ(report.traces.front().detail, "it could not be looked at");
}

TEST_F(LinksTest, OfTwoNamesThatDifferInLetterCaseTheRightOneGoesAndIsTold) {
  const fs::path gone = HostOf(Make("Twin.exe"));
  std::ofstream(gone.parent_path() / "tWIN.exe") << "x";
  for (const char* name : {"Twin.exe", "tWIN.exe"}) AddRow(Path(name));
  for (const size_t row : {0U, 1U}) results.lvwFilesToBeDeleted.SetChecked(row, true);
  RemovalRecord record = Record();
  // A program's file is deleted and then looked for once more.
  EXPECT_EQ(Remove(Path("Twin.exe")).quarantine, "");
  const RemovalReport report = record.Conclude("");
  ASSERT_EQ(report.traces.size(), 2U);
  EXPECT_EQ(report.traces[0].fate, Fate::kRemoved);
  EXPECT_EQ(report.traces[1].fate, Fate::kFailed);
}

TEST_F(LinksTest, ALinkGoesForItselfAndItsTargetStays) {
  const std::string target = Make("target.txt", "keep");
  fs::create_symlink(HostOf(target), HostOf(Path("link.txt")));
  Remove(Path("link.txt"));
  EXPECT_FALSE(fs::exists(fs::symlink_status(HostOf(Path("link.txt")))));
  EXPECT_EQ(Read(target), "keep");
}

TEST_F(LinksTest, AQuarantineThatIsALinkTakesNothing) {
  files().CreateFolder(Path("elsewhere"));
  const std::string quarantine = GetPathWithSlash(program.ProgramFolder()) + "Quarantine";
  fs::create_directory_symlink(HostOf(Path("elsewhere")), HostOf(quarantine));
  FileOutcome outcome;
  removal.MoveThisFile(Make("a.txt"), outcome);
  // It is as good as one that may not be written, instead of which there is the user's own.
  EXPECT_NE(outcome.quarantine.find("\\Quarnel\\Quarantine\\"), std::string::npos);
  EXPECT_EQ(outcome.quarantine.find(quarantine), std::string::npos);
  EXPECT_TRUE(Exists(outcome.quarantine));
  EXPECT_TRUE(Names(Path("elsewhere")).empty());
}

// A link to itself stands for any file that is there and cannot be read.
TEST_F(LinksTest, APartOfThePointThatCannotBeReadIsNamed) {
  const std::string gone = Plant(Path("gone.exe"), "x");
  SetValue("Key", "one", RawFromValue(std::string("1")));
  AddTrace("Key", "one");
  const BackupReport report = backup.BackupSpyware();
  files().Delete(gone);
  for (const std::string_view ending :
       {restore_point::kManifest, restore_point::kRegistry, restore_point::kFiles}) {
    const fs::path part = HostOf(PointFile(report, ending));
    fs::rename(part, part.string() + ".aside");
    fs::create_symlink(part.filename(), part);
    // Without its manifest all comes back, unchecked.
    EXPECT_EQ(restore.RestoreSpyware(report.stem).Complete(), ending == restore_point::kManifest)
        << ending;
    EXPECT_NE(host.messages.back().text, "Restore process completed successfully.") << ending;
    fs::remove(part);
    fs::rename(part.string() + ".aside", part);
    IgnoringErrors([&] { files().Delete(gone); });
  }
  EXPECT_TRUE(restore.RestoreSpyware(report.stem).failures.empty());
}

// At each moment of a restore at which something else can happen, the folder is moved away and a
// link is put in its place.
TEST_F(LinksTest, NothingIsRestoredThroughALinkThatComesMeanwhile) {
  std::vector<std::string> paths;
  for (const char* name : {"first\\1", "swapped\\2", "swapped\\3", "last\\4"}) {
    paths.push_back(Plant(Path(name), name));
  }
  const BackupReport report = backup.BackupSpyware();
  files().CreateFolder(Path("elsewhere"));
  const fs::path folder = HostOf(Path("swapped"));
  const fs::path aside = HostOf(Path("aside"));
  for (const int strict : {0, 1}) {
    settings.Save(setting::kStrict, strict);
    for (int moment = 1; moment <= 6; ++moment) {
      SCOPED_TRACE("strict " + std::to_string(strict) + ", moment " + std::to_string(moment));
      for (const std::string& path : paths) IgnoringErrors([&] { files().Delete(path); });
      int turn = 0;
      bool swapped = false;
      host.onEvents = [&] {
        if (++turn != moment) return;
        fs::rename(folder, aside);
        fs::create_directory_symlink("elsewhere", folder);
        swapped = true;
      };
      const RestoreReport restored = restore.RestoreSpyware(report.stem);
      host.onEvents = nullptr;
      EXPECT_TRUE(Names(Path("elsewhere")).empty());
      EXPECT_EQ(Read(paths[0]) + Read(paths[3]), "first\\1last\\4");
      // Either in the folder that was meant, or named as not restored.
      size_t back = 0;
      if (swapped) {
        for (const char* name : {"2", "3"}) back += fs::exists(aside / name) ? 1U : 0U;
        fs::remove(folder);
        fs::rename(aside, folder);
        EXPECT_EQ(back + restored.failures.size(), 2U);
      } else {
        EXPECT_EQ(restored.files, 4U);
      }
      EXPECT_TRUE(swapped || moment > 4);
      for (const fs::path& place : {HostOf(Path("first")), folder, HostOf(Path("last"))}) {
        for (const auto& entry : fs::directory_iterator(place)) {
          EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
        }
      }
    }
  }
}

}  // namespace
}  // namespace quarnel
