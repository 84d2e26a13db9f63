#include <gtest/gtest.h>

#include <filesystem>

#include "core/paths.h"
#include "platform/machine_folder.h"
#include "recovery/backup_fixture.h"
#include "recovery/file_removal.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

// Folders that were swapped for links between a scan and its removal.
namespace quarnel {
namespace {

namespace fs = std::filesystem;

class LinksTest : public PlatformTest {
 protected:
  fs::path HostOf(std::string_view path) { return HostPathOf(machineFolder(), path); }
  FileOutcome Remove(const std::string& path) {
    FileOutcome outcome;
    if (!removal.DeleteByExtension(path, outcome)) removal.MoveThisFile(path, outcome);
    return outcome;
  }

  TestHost host;
  ErrorLog log{files(), machine(), host, "Quarnel"};
  Settings settings{registry(), "Quarnel"};
  FileRemoval removal{{.files = files(),
                       .processes = platform().processes(),
                       .machine = machine(),
                       .settings = settings,
                       .host = host,
                       .log = log}};
};

TEST_F(LinksTest, NothingBehindALinkIsDeletedOrMoved) {
  CreateFolders(files(), Path("real\\deep"));
  fs::create_directory_symlink(HostOf(Path("real")), HostOf(Path("swapped")));
  for (const char* name : {"a.exe", "a.dll", "a.txt"}) {
    WriteWholeFile(files(), Path("real\\deep\\") + name, "keep");
    const FileOutcome outcome = Remove(Path("swapped\\deep\\") + name);
    EXPECT_TRUE(outcome.refused) << name;
    EXPECT_EQ(ReadWholeFile(files(), Path("real\\deep\\") + name), "keep");
  }
  EXPECT_NE(ReadWholeFile(files(), log.Path()).find("a folder on the way to it is a link"),
            std::string::npos);
}

TEST_F(LinksTest, ALinkGoesForItselfAndItsTargetStays) {
  WriteWholeFile(files(), Path("target.txt"), "keep");
  fs::create_symlink(HostOf(Path("target.txt")), HostOf(Path("link.txt")));
  Remove(Path("link.txt"));
  EXPECT_FALSE(fs::exists(fs::symlink_status(HostOf(Path("link.txt")))));
  EXPECT_EQ(ReadWholeFile(files(), Path("target.txt")), "keep");
}

TEST_F(LinksTest, AQuarantineThatIsALinkTakesNothing) {
  CreateFolders(files(), machine().ProgramFolder());
  files().CreateFolder(Path("elsewhere"));
  const std::string quarantine = GetPathWithSlash(machine().ProgramFolder()) + "Quarantine";
  fs::create_directory_symlink(HostOf(Path("elsewhere")), HostOf(quarantine));
  WriteWholeFile(files(), Path("a.txt"), "x");
  FileOutcome outcome;
  removal.MoveThisFile(Path("a.txt"), outcome);
  EXPECT_NE(outcome.obstacle, "");
  EXPECT_TRUE(files().Stat(Path("a.txt")));
  EXPECT_TRUE(files().List(Path("elsewhere")).empty());
}

class SwapTest : public BackupTest {
 protected:
  fs::path HostOf(std::string_view path) { return HostPathOf(machineFolder(), path); }
};

// A link to itself stands for any file that is there and cannot be read.
TEST_F(SwapTest, APartOfThePointThatCannotBeReadIsNamed) {
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
    EXPECT_FALSE(restore.RestoreSpyware(report.stem).failures.empty()) << ending;
    EXPECT_NE(host.messages.back().text, "Restore process completed successfully.") << ending;
    fs::remove(part);
    fs::rename(part.string() + ".aside", part);
    IgnoringErrors([&] { files().Delete(gone); });
  }
  EXPECT_TRUE(restore.RestoreSpyware(report.stem).failures.empty());
}

// At each moment of a restore at which something else can happen, the folder is moved away and a
// link is put in its place.
TEST_F(SwapTest, NothingIsRestoredThroughALinkThatComesMeanwhile) {
  std::vector<std::string> paths;
  for (const char* name : {"first\\1", "swapped\\2", "swapped\\3", "last\\4"}) {
    paths.push_back(Plant(Path(name), name));
  }
  const BackupReport report = backup.BackupSpyware();
  files().CreateFolder(Path("elsewhere"));
  const fs::path folder = HostOf(Path("swapped"));
  const fs::path aside = HostOf(Path("aside"));
  for (const char* strict : {"0", "1"}) {
    settings.Save(setting::kStrict, strict);
    for (int moment = 1; moment <= 6; ++moment) {
      SCOPED_TRACE(std::string("strict ") + strict + ", moment " + std::to_string(moment));
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
      EXPECT_TRUE(files().List(Path("elsewhere")).empty());
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
