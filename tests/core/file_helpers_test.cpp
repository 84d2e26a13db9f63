#include <gtest/gtest.h>

#include "core/dir_drill.h"
#include "core/existing_files.h"
#include "core/paths.h"
#include "core/system_version.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

class FileHelpers : public PlatformTest {
 protected:
  std::string MakeWith(uint32_t attributes, std::string_view name) {
    std::string path = Make(name);
    files().SetAttributes(path, attributes);
    return path;
  }
  TestHost host;
};

TEST_F(FileHelpers, ExistenceIsWhatADirectorySearchGives) {
  Make("Plain.txt");
  MakeWith(file_attribute::kHidden, "hidden.txt");
  MakeWith(file_attribute::kSystem, "system.txt");
  MakeWith(file_attribute::kReadOnly, "locked.txt");
  Make("Übel.txt");
  files().CreateFolder(Path("folder"));
  const struct {
    std::string name;
    bool exists;
    std::string hiddenSearch;
  } cases[] = {
      {"pLAIN.TXT", true, "Plain.txt"},
      {"übel.txt", true, "Übel.txt"},
      {"hidden.txt", false, "hidden.txt"},
      {"system.txt", false, ""},
      {"locked.txt", true, "locked.txt"},
      {"folder", false, ""},
      {"folder\\", false, ""},
      {"none", false, ""},
      {"*.txt", false, ""},
      {"Plain.tx?", false, ""},
      {"", false, ""},
      {"none\\Plain.txt", false, ""},
      {std::string("Plain.txt\0", 10), false, ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FileExists(files(), Path(c.name)), c.exists) << c.name;
    EXPECT_EQ(Dir(files(), Path(c.name), Search::kHidden), c.hiddenSearch) << c.name;
  }
  EXPECT_FALSE(FileExists(files(), ""));
}

TEST_F(FileHelpers, DeleteFileRetry) {
  const std::string plain = Make("plain.txt");
  EXPECT_TRUE(DeleteFileRetry(files(), host, plain));
  EXPECT_EQ(host.eventTurns, 1);
  EXPECT_FALSE(DeleteFileRetry(files(), host, plain));
  EXPECT_FALSE(DeleteFileRetry(files(), host, "plain.txt"));
  EXPECT_EQ(host.eventTurns, 1);
  const std::string locked = MakeWith(file_attribute::kReadOnly, "locked.txt");
  EXPECT_FALSE(DeleteFileRetry(files(), host, locked));
  EXPECT_EQ(host.eventTurns, 9);
  // What an event handler does in between counts.
  host.onEvents = [&] {
    IgnoringErrors([&] { files().SetAttributes(locked, file_attribute::kNormal); });
  };
  EXPECT_TRUE(DeleteFileRetry(files(), host, locked));
  EXPECT_EQ(host.eventTurns, 11);
}

TEST_F(FileHelpers, Folders) {
  EXPECT_EQ(GetSystemRootPath(machine(), registry()),
            GetPathWithSlash(GetPath(machine(), csidl::kWindows)));
  EXPECT_EQ(GetPath(machine(), 9999), "");
  EXPECT_TRUE(GetProgramFilesPath(registry()).ends_with("\\"));
  EXPECT_EQ(GetOSVersionInfo(machine(), host, "t"), 2);
  std::string label = "old";
  std::string fileSystem;
  EXPECT_TRUE(GetVolumeInfo(machine(), "C:\\", label, fileSystem) && !fileSystem.empty());
  EXPECT_FALSE(GetVolumeInfo(machine(), "B:\\", label, fileSystem));
}

// A tree to walk, with the events that the walk raises as short lines.
class Walks : public FileHelpers {
 protected:
  Walks() {
    for (const char* folder : {"b", "b\\deep", "a", ".dot", "hid", "empty"}) {
      files().CreateFolder(Path(folder));
    }
    for (const char* file : {"z.txt", "y.EXE", "m.rc", "b\\1.txt", "b\\deep\\2.exe", "a\\noext",
                             ".dot\\3.txt", "hid\\4.txt"}) {
      Make(file);
    }
    MakeWith(file_attribute::kHidden, "a\\hidden.txt");
    files().SetAttributes(Path("hid"), file_attribute::kHidden);
    drill.NewFolder = [this](bool& cancel, const std::string& path) { Saw(cancel, path); };
    drill.NewFile = [this](bool& cancel, const std::string& path) { Saw(cancel, path); };
    drill.Done = [this](long folders, long found) {
      log += "= " + std::to_string(folders) + " " + std::to_string(found);
    };
  }
  void Saw(bool& cancel, const std::string& path) {
    const std::string shown = path.substr(Scratch().size());
    log += shown + " ";
    if (shown == stopAt) cancel = true;
    if (shown == failAt) throw RuntimeError(ErrorNumber::kOverflow);
  }
  std::string Walked(std::string_view folder) {
    log.clear();
    drill.BeginSearch(folder);
    return log;
  }
  CDirDrill drill{files()};
  std::string log, stopAt, failAt;
};

TEST_F(Walks, FilesComeBeforeSubfolders) {
  EXPECT_EQ(Walked(Path("none")), "= 1 0");
  EXPECT_EQ(drill.Folder(), "");
  EXPECT_EQ(Walked(""), "= 1 0");
  EXPECT_EQ(Walked(Scratch()),
            "\\ \\m.rc \\y.EXE \\z.txt \\a\\ \\a\\noext \\b\\ \\b\\1.txt \\b\\deep\\ "
            "\\b\\deep\\2.exe \\empty\\ = 5 6");
  failAt = "\\y.EXE";
  EXPECT_TRUE(Walked("").ends_with("= 5 6")) << "an error in a handler ends nothing";
}

TEST_F(Walks, PatternsAreTakenInTheirOrder) {
  drill.SetPattern(" *.exe , *.txt;y.*;");
  EXPECT_EQ(drill.Pattern(), "*.exe;*.txt;y.*;");
  EXPECT_EQ(Walked(Scratch()),
            "\\ \\y.EXE \\z.txt \\y.EXE \\a\\ \\b\\ \\b\\1.txt \\b\\deep\\ \\b\\deep\\2.exe "
            "\\empty\\ = 5 5");
  drill.SetPattern("");
  EXPECT_TRUE(Walked(Scratch()).ends_with("= 5 0"));
}

TEST_F(Walks, ListenersStopThem) {
  stopAt = "\\y.EXE";
  EXPECT_EQ(Walked(Scratch()), "\\ \\m.rc \\y.EXE = 4 2");
  stopAt = "\\";
  EXPECT_EQ(Walked(Scratch()), "\\ = 1 0");
  stopAt = "\\b\\";
  EXPECT_EQ(Walked(Scratch()), "\\ \\m.rc \\y.EXE \\z.txt \\a\\ \\a\\noext \\b\\ = 4 4");
}

// Handlers process events, and anything may happen to the tree meanwhile.
TEST_F(Walks, TheTreeMayVanishMeanwhile) {
  drill.NewFile = [this](bool& cancel, const std::string& path) {
    Saw(cancel, path);
    DeleteTree(files(), Scratch());
  };
  EXPECT_EQ(Walked(Scratch()), "\\ \\m.rc \\y.EXE \\z.txt \\a\\ \\b\\ \\empty\\ = 4 3");
}

TEST_F(Walks, NamesAndTexts) {
  EXPECT_EQ(drill.ExtractName(Path("a.b\\c"), true), "");
  EXPECT_EQ(drill.ExtractName("x.tar.gz", true), "gz");
  EXPECT_EQ(drill.ExtractName(Path("a"), false), "");
  EXPECT_EQ(drill.ExtractPath(Path("a.b\\c")), Path("a.b\\"));
  EXPECT_EQ(drill.ExtractPath(Path("a")), Path("a\\"));
  EXPECT_EQ(drill.FileText(Path("z.txt")) + drill.FileText(Path("none")), "x");
}

}  // namespace
}  // namespace quarnel
