#include <gtest/gtest.h>

#include <filesystem>

#include "core/paths.h"
#include "platform/machine_folder.h"
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

}  // namespace
}  // namespace quarnel
