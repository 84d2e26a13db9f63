#include "platform/files.h"

#include <gtest/gtest.h>
#include <array>

#include <functional>

#include "base/text.h"
#include "platform/held_folders.h"
#include "platform/names.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using enum ErrorNumber;

class FilesTest : public PlatformTest {
 protected:
  bool OnRunningSystem() const { return machineFolder().empty(); }
  // As the threads read it that hash a folder's files.
  std::string ReadListed(std::string_view folder, std::string_view name) {
    std::string buffer(1000, '\0');
    const auto file = files().OpenFolder(folder)->Open(name);
    buffer.resize(file->Read(buffer));
    return buffer;
  }
};

TEST_F(FilesTest, OpenModesKeepEmptyOrExtendAFile) {
  const std::string path = Path("modes.bin");
  const std::string allBytes = std::string("\0\r\n\xFF\x1A", 5) + "tail";
  files().Open(path, OpenMode::kReadWrite)->Write(allBytes);
  EXPECT_EQ(Read(path), allBytes);

  const auto file = files().Open(path, OpenMode::kReadWrite);
  EXPECT_EQ(file->Size(), 9U);
  file->Seek(5);
  file->Write("T");
  file->Seek(12);
  file->Write("!");
  file->Flush();
  char buffer[4] = {};
  file->Seek(5);
  EXPECT_EQ(file->Read(buffer), 4U);
  EXPECT_EQ(std::string(buffer, 4), "Tail");
  EXPECT_EQ(Read(path), std::string("\0\r\n\xFF\x1ATail\0\0\0!", 13));

  AppendToFile(files(), path, "+");
  EXPECT_EQ(Read(path).size(), 14U);
  WriteWholeFile(files(), path, "");
  EXPECT_EQ(Read(path), "");
  EXPECT_EQ(file->Read(buffer), 0U);
}

TEST_F(FilesTest, FindsPathsInAnyCaseWithEitherSlash) {
  Make("Folder\\File.TXT", "found");
  const std::string drive = Scratch().substr(0, 2);
  const std::string rest = Scratch().substr(2);
  for (const std::string& path :
       {Path("folder\\file.txt"), Path("FOLDER/FILE.TXT"), ToLower(Path("Folder")) + "//file.Txt",
        Path(".\\Folder\\..\\Folder\\.\\File.TXT"), Path("nowhere\\..\\Folder\\File.TXT"),
        Join({drive, "\\..\\..\\..", rest, "\\Folder\\File.TXT"}, ""),
        Join({"c:", rest, "\\Folder\\File.TXT"}, "")}) {
    EXPECT_EQ(Read(path), "found") << path;
    const auto entry = files().Stat(path);
    ASSERT_TRUE(entry) << path;
    EXPECT_EQ(entry->name, "File.TXT") << path;
    EXPECT_EQ(entry->size, 5U);
    EXPECT_FALSE(entry->IsFolder());
  }
  Make("Folder\\ävil ж.txt", "beyond");
  EXPECT_EQ(Read(Path("Folder\\ÄVIL Ж.TXT")), "beyond");
  EXPECT_EQ(files().HoldFolders()->Make(Path("folder")).Stat("Ävil ж.txt")->name, "ävil ж.txt");
  files().Delete(Path("Folder\\ävil Ж.txt"));
  // Written through another case it stays the one file.
  WriteWholeFile(files(), Path("FOLDER\\file.txt"), "again");
  EXPECT_EQ(Names(Path("Folder")), Strings{"File.TXT"});
}

TEST_F(FilesTest, ListsAFolderInOrderOfFoldedNames) {
  for (const char* name : {"b", "_c", "A2", "a10", ".hidden", "Z"}) Make(name, "12");
  files().CreateFolder(Path("c"));
  EXPECT_EQ(Names(Scratch()), (Strings{".hidden", "a10", "A2", "b", "c", "Z", "_c"}));
  const auto entries = files().List(Scratch() + "\\");
  EXPECT_TRUE(entries[4].IsFolder());
  EXPECT_EQ(entries[4].size, 0U);
  EXPECT_EQ(entries[3].size, 2U);
  EXPECT_TRUE(files().Stat("C:\\")->IsFolder());
}

TEST_F(FilesTest, OpenedFolderSaysWhatItHasNot) {
  files().CreateFolder(Path("sub"));
  const auto folder = files().OpenFolder(Scratch() + "\\");
  EXPECT_EQ(ErrorOf([&] { folder->Open("three"); }), kFileNotFound);
  EXPECT_EQ(ErrorOf([&] { folder->Open("sub"); }), kPathFileAccess);
  EXPECT_ANY_THROW(files().OpenFolder(Path("none") + "\\")->Open("one"));
}

TEST_F(FilesTest, KeepsEveryName) {
  const struct {
    std::string name;
    bool wellFormed = true;
  } cases[] = {
      {"\xC3\xA4\xE2\x82\xAC.txt"},         // letters outside ASCII
      {"\xF0\x9F\x98\x80.dat"},             // outside the basic plane
      {"\xED\xA0\x80lone.exe", false},      // a lone surrogate in its three-byte form
      {"latin\xE4.exe", false},             // a byte that is no UTF-8
      {"50% off;&'()[]{}!#$+,-=@^_`~ .x"},  // all that Windows allows
      {std::string(196, 'n') + ".long"},
  };
  for (const auto& [name, wellFormed] : cases) {
    // A running system may stand on disks that take no other names.
    const bool made = IgnoringErrors([&, &wanted = name] { Make(wanted, wanted); });
    if (!made && !wellFormed && OnRunningSystem()) continue;
    EXPECT_EQ(Read(Path(name)), name);
    EXPECT_EQ(ReadListed(Scratch() + "\\", name), name);
    ASSERT_TRUE(Exists(Path(name))) << name;
    EXPECT_EQ(files().Stat(Path(name))->name, name);
    EXPECT_EQ(Names(Scratch()), Strings{name});
    files().Delete(Path(name));
    EXPECT_FALSE(Exists(Path(name))) << name;
  }
}

TEST_F(FilesTest, ReachesPathsOfAnyDepth) {
  std::string folder = Scratch();
  const std::string part(100, 'd');
  // A running system may stand on another one, whose paths end at 4,096.
  const int depth = OnRunningSystem() ? 30 : 60;
  for (int level = 0; level < depth; ++level) {
    folder += "\\" + part;
    files().CreateFolder(folder);
  }
  const std::string path = folder + "\\deep.exe";
  WriteWholeFile(files(), path, "deep");
  EXPECT_EQ(Read(ToUpper(path)), "deep");
  EXPECT_EQ(ReadListed(folder + "\\", "deep.exe"), "deep");
  EXPECT_EQ(Names(folder), Strings{"deep.exe"});
  EXPECT_FALSE(Exists(folder + "\\other.exe"));
  files().Move(path, folder + "\\moved.exe");
  files().Delete(folder + "\\moved.exe");
  EXPECT_TRUE(Names(folder).empty());
}

TEST_F(FilesTest, SaysWhatKindOfFailureItIs) {
  Make("file");
  Make("read-only", "kept");
  files().SetAttributes(Path("read-only"), file_attribute::kReadOnly);
  files().CreateFolder(Path("folder"));
  Make("full\\x");
  const std::string missing = Path("missing");
  const std::string pathless = Path("no\\such\\x");
  const auto open = [&](std::string_view path, OpenMode mode) {
    return ErrorOf([&] { files().Open(path, mode); });
  };
  EXPECT_EQ(open(missing, OpenMode::kRead), kFileNotFound);
  EXPECT_EQ(open(pathless, OpenMode::kRead), kPathNotFound);
  EXPECT_EQ(open(Path("file\\x"), OpenMode::kRead), kPathNotFound);
  EXPECT_EQ(open(Path("folder"), OpenMode::kRead), kPathFileAccess);
  EXPECT_EQ(open(Path("a?b"), OpenMode::kRead), kBadFileName);
  EXPECT_EQ(open("", OpenMode::kRead), kBadFileName);
  for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kCreate, OpenMode::kAppend}) {
    EXPECT_EQ(open(pathless, mode), kPathNotFound);
    EXPECT_EQ(open(Path("folder"), mode), kPathFileAccess);
    EXPECT_EQ(open(Path("read-only"), mode), kPermissionDenied);
    EXPECT_EQ(open(Path("a*b"), mode), kBadFileName);
    EXPECT_EQ(open(Path(std::string(300, 'n')), mode), kBadFileName);
  }
  Files& f = files();
  const struct {
    const char* what;
    ErrorNumber wanted;
    std::function<void()> action;
  } cases[] = {
      {"delete missing", kFileNotFound, [&] { f.Delete(missing); }},
      {"delete pathless", kPathNotFound, [&] { f.Delete(pathless); }},
      {"delete folder", kPathFileAccess, [&] { f.Delete(Path("folder")); }},
      {"delete read-only", kPermissionDenied, [&] { f.Delete(Path("read-only")); }},
      {"delete pattern", kBadFileName, [&] { f.Delete(Path("*")); }},
      {"rmdir full", kPathFileAccess, [&] { f.DeleteFolder(Path("full")); }},
      {"rmdir file", kPathFileAccess, [&] { f.DeleteFolder(Path("file")); }},
      {"mkdir there", kFileExists, [&] { f.CreateFolder(Path("FOLDER")); }},
      {"mkdir on file", kFileExists, [&] { f.CreateFolder(Path("file")); }},
      {"mkdir pathless", kPathNotFound, [&] { f.CreateFolder(pathless); }},
      {"move missing", kFileNotFound, [&] { f.Move(missing, Path("y")); }},
      {"move onto", kFileExists, [&] { f.Move(Path("file"), Path("READ-only")); }},
      {"move pathless", kPathNotFound, [&] { f.Move(Path("file"), pathless); }},
      {"move into itself", kPermissionDenied, [&] { f.Move(Path("full"), Path("full\\y")); }},
      {"copy missing", kFileNotFound, [&] { f.Copy(missing, Path("y")); }},
      {"copy onto folder", kPathFileAccess, [&] { f.Copy(Path("file"), Path("folder")); }},
      {"copy onto read-only", kPermissionDenied, [&] { f.Copy(Path("file"), Path("read-only")); }},
      {"copy onto itself", kPermissionDenied, [&] { f.Copy(Path("file"), Path("FILE")); }},
      {"replace by missing", kFileNotFound, [&] { f.ReplaceFile(missing, Path("file")); }},
      {"replace read-only", kPermissionDenied,
       [&] { f.ReplaceFile(Path("file"), Path("read-only")); }},
      {"list missing", kPathNotFound, [&] { f.List(missing); }},
      {"list file", kPathNotFound, [&] { f.List(Path("file")); }},
      {"attributes", kFileNotFound, [&] { f.SetAttributes(missing, 0); }},
      {"modified", kFileNotFound, [&] { f.SetModified(missing, FileTime()); }},
      {"times", kFileNotFound, [&] { f.Times(missing); }},
      {"folder below a file", kFileExists, [&] { CreateFolders(f, Path("file\\x")); }},
      {"too large", kOverflow, [&] { ReadWholeFile(f, Path("file"), 0); }},
  };
  for (const auto& [what, wanted, action] : cases) EXPECT_EQ(ErrorOf(action), wanted) << what;
  for (const std::string& path :
       {missing, pathless, Path("fi?e"), Path("f*"), std::string(), std::string("C:\\a\0b", 6),
        std::string("1:\\"), std::string("\\\\?\\"), std::string("\\\\host\\share\\x"),
        "C:\\" + std::string(200000, '\\') + "x", "C:" + std::string(100000, 'x')}) {
    EXPECT_FALSE(Exists(path)) << path.substr(0, 80);
  }
  EXPECT_EQ(ReadWholeFile(f, Path("file"), 1), "x");
  EXPECT_EQ(Read(Path("read-only")), "kept");
}

TEST_F(FilesTest, MovesAndReplaces) {
  Make("settings.new", "new");
  Make("settings.ini", "old");
  files().ReplaceFile(Path("settings.new"), Path("SETTINGS.ini"));
  EXPECT_EQ(Read(Path("settings.ini")), "new");
  EXPECT_EQ(Names(Scratch()), Strings{"settings.ini"});
  files().Delete(Path("settings.ini"));

  Make("from\\a", "1");
  files().Move(Path("FROM"), Path("to"));
  EXPECT_EQ(Names(Scratch()), Strings{"to"});
  files().Move(Path("to\\a"), Path("b"));
  EXPECT_EQ(Read(Path("b")), "1");
  // A change of letter case is none of place; not every system under a running one makes it.
  files().Move(Path("b"), Path("ä"));
  files().Move(Path("ä"), Path("Ä"));
  EXPECT_EQ(Read(Path("ä")), "1");
  EXPECT_EQ(Names(Scratch()).size(), 2U);
  if (!OnRunningSystem()) {
    EXPECT_EQ(Names(Scratch())[1], "Ä");
  }
}

TEST_F(FilesTest, ReplacesAWholeFileByWayOfAnother) {
  const std::string path = Path("list.txt");
  const std::string temporary = TemporaryName(path);
  EXPECT_EQ(temporary.substr(0, temporary.rfind('\\')), Scratch());
  EXPECT_EQ(temporary, TemporaryName(Path("LIST.txt")));
  EXPECT_NE(temporary, TemporaryName(Path("list2.txt")));
  using Replace = std::function<void(const std::string& path, const std::string& bytes)>;
  for (const Replace& replace :
       {Replace([&](const auto&to, const auto&bytes) { ReplaceWholeFile(files(), to, bytes); }),
        Replace([&](const auto&to, const auto&bytes) {
          ReplaceWholeFiles(files(), std::array{WholeFile{to, bytes}});
        })}) {
    // What a killed program left there is in nobody's way.
    WriteWholeFile(files(), temporary, "half");
    replace(path, "new");
    replace(Path("LIST.TXT"), "new");
    EXPECT_EQ(Read(path), "new");
    EXPECT_EQ(Names(Scratch()), Strings{"list.txt"});
    files().SetAttributes(path, file_attribute::kReadOnly);
    EXPECT_EQ(ErrorOf([&] { replace(path, "x"); }), kPermissionDenied);
    EXPECT_EQ(ErrorOf([&] { replace(Path("no\\x"), "x"); }), kPathNotFound);
    // Whoever reads the error knows no temporary name.
    try {
      replace(Path("no\\x"), "x");
    } catch (const RuntimeError& error) {
      EXPECT_TRUE(error.Description().ends_with("\\no\\x")) << error.Description();
    }
    // A failure at the last step leaves the old file and nothing beside it.
    files().CreateFolder(Path("folder"));
    EXPECT_EQ(ErrorOf([&] { replace(Path("folder"), "x"); }), kPathFileAccess);
    EXPECT_EQ(Names(Scratch()), (Strings{"folder", "list.txt"}));
    EXPECT_EQ(Read(path), "new");
    files().DeleteFolder(Path("folder"));
    files().SetAttributes(path, file_attribute::kNormal);
  }
}

TEST_F(FilesTest, ReplacesSeveralFilesInTheirOrder) {
  files().CreateFolder(Path("a"));
  files().CreateFolder(Path("a\\folder"));
  const std::array wanted = {WholeFile{Path("1.txt"), "one"}, WholeFile{Path("A\\2.txt"), ""},
                             WholeFile{Path("a\\folder"), "x"}, WholeFile{Path("3.txt"), "three"}};
  ReplaceWholeFiles(files(), std::span(wanted).first(2));
  EXPECT_EQ(Read(Path("1.txt")), "one");
  EXPECT_EQ(Read(Path("a\\2.txt")), "");
  // The third cannot be replaced, and the fourth is not.
  EXPECT_EQ(ErrorOf([&] { ReplaceWholeFiles(files(), wanted); }), kPathFileAccess);
  EXPECT_EQ(Names(Scratch()), (Strings{"1.txt", "a"}));
  EXPECT_EQ(Names(Path("a")), (Strings{"2.txt", "folder"}));
}

TEST_F(FilesTest, HeldFoldersTakeManyFilesAtOnce) {
  for (const int count : {3, 30}) {
    const std::string base = Path("held" + std::to_string(count));
    const auto folders = files().WithoutLinks().HoldFolders();
    EXPECT_EQ(folders->Find(base), nullptr);
    HeldFolder& top = folders->Make(base);
    HeldFolder& deep = folders->Make(base + "\\a\\b");
    EXPECT_EQ(&folders->Make(base), &top);
    EXPECT_EQ(folders->Find(base + "\\a\\b"), &deep);
    top.Create("File0")->Write("old");
    std::vector<std::function<void()>> places;
    for (int i = 0; i < count; ++i) {
      const std::string name = "file" + std::to_string(i);
      HeldFolder& folder = i % 2 == 0 ? top : deep;
      folder.Create(name + ".new")->Write(std::to_string(i));
      places.push_back([&folder, name] { folder.PutInPlace(name + ".NEW", name); });
    }
    folders->Flush();
    for (const auto& place : places) place();
    folders->Flush();
    for (int i = 0; i < count; ++i) {
      EXPECT_EQ(Read(base + (i % 2 == 0 ? "\\file" : "\\a\\b\\FILE") + std::to_string(i)),
                std::to_string(i));
    }
    EXPECT_EQ(Names(base).size(), 1U + static_cast<size_t>(count + 1) / 2);
    // What stood there has kept its name.
    EXPECT_EQ(top.Stat("FILE0")->name, "File0");
    EXPECT_EQ(top.Stat("file0")->size, 1U);
  }
}

TEST_F(FilesTest, HeldFolderWorksByNamesAlone) {
  CreateFolders(files(), Path("held\\sub"));
  Make("held\\old");
  files().SetAttributes(Path("held\\old"), file_attribute::kReadOnly);
  const auto folders = files().WithoutLinks().HoldFolders();
  HeldFolder& folder = folders->Make(Path("held"));
  constexpr std::string_view kNoNames[] = {"",      ".",   "..",  "a\\b", "a/b",
                                           "..\\x", "C:x", "a:b", "a*",   {"a\0b", 3}};
  for (const std::string_view name : kNoNames) {
    EXPECT_EQ(ErrorOf([&] { folder.Create(name); }), kBadFileName) << name;
    EXPECT_FALSE(folder.Stat(name)) << name;
  }
  EXPECT_EQ(ErrorOf([&] { folder.Delete("none"); }), kFileNotFound);
  EXPECT_EQ(ErrorOf([&] { folder.PutInPlace("none", "x"); }), kFileNotFound);
  folder.Create("new")->Write("1");
  EXPECT_EQ(ErrorOf([&] { folder.PutInPlace("new", "SUB"); }), kPathFileAccess);
  EXPECT_EQ(ErrorOf([&] { folder.PutInPlace("new", "OLD"); }), kPermissionDenied);
  folder.SetAttributes("OLD", file_attribute::kNormal);
  folder.PutInPlace("new", "OLD");
  const FileTime time = FileTime(std::chrono::sys_days(std::chrono::days(12'500)));
  folder.SetTimes("old", {.modified = time});
  EXPECT_EQ(files().Stat(Path("held\\old"))->modified, time);
  EXPECT_EQ(Read(Path("held\\old")), "1");
  // A file that had the name goes.
  folder.Create("Old")->Write("22");
  char buffer[4] = {};
  EXPECT_EQ(folder.OpenForReading("oLD")->Read(buffer), 2U);
  folder.Delete("OLD");
  EXPECT_EQ(Names(Path("held")), Strings{"sub"});
  Make("file");
  EXPECT_EQ(folders->Find(Path("file")), nullptr);
  EXPECT_EQ(ErrorOf([&] { folders->Make(Path("file\\x")); }), kFileExists);
}

TEST_F(FilesTest, KeepsTimes) {
  const std::string path = Make("times");
  const auto moment = [](int64_t ticks) {
    return FileTime(std::chrono::sys_days(std::chrono::days(12'500))) + FileTime::duration(ticks);
  };
  files().SetTimes(path, {.created = moment(1), .accessed = moment(22), .modified = moment(333)});
  FileTimes times = files().Times(path);
  EXPECT_EQ(times.accessed, moment(22));
  EXPECT_EQ(times.modified, moment(333));
  // One that is not known stays as it is.
  files().SetTimes(path, {.modified = moment(4444)});
  EXPECT_EQ(files().Times(path).accessed, moment(22));
  EXPECT_EQ(files().Stat(path)->modified, moment(4444));
  // Wine gives the time of the last change for both.
  if (times.created != times.modified) {
    EXPECT_EQ(files().Times(path).created, times.created);
  }
}

TEST_F(FilesTest, CopyBringsContentAttributesAndTime) {
  const std::string content = std::string(300'000, 'c') + "end";
  Make("source", content);
  Make("target", std::string(400'000, 't'));
  const FileTime time = FileTime(std::chrono::sys_days(std::chrono::days(12'500))) +
                        FileTime::duration(123'456'789'012);
  files().SetModified(Path("source"), time);
  files().SetAttributes(Path("source"), file_attribute::kReadOnly | file_attribute::kHidden);
  files().Copy(Path("source"), Path("target"));
  EXPECT_EQ(Read(Path("target")), content);
  const auto entry = files().Stat(Path("target"));
  EXPECT_EQ(entry->modified, time);
  EXPECT_NE(entry->attributes & file_attribute::kReadOnly, 0U);
  EXPECT_EQ(entry->attributes & file_attribute::kHidden,
            files().Stat(Path("source"))->attributes & file_attribute::kHidden);
}

TEST_F(FilesTest, KeepsAttributes) {
  using namespace file_attribute;
  constexpr uint32_t kSettable = kReadOnly | kHidden | kSystem | kArchive | kTemporary;
  const std::string path = Make("attributes");
  const std::string folder = Path("folder");
  files().CreateFolder(folder);
  const auto set = [&](const std::string& what, uint32_t attributes) {
    files().SetAttributes(what, attributes);
    return files().Stat(what)->attributes & (kSettable | kDirectory);
  };
  for (const std::string& what : {path, folder}) {
    // Temporary is for files alone.
    const uint32_t settable = what == path ? kSettable : kSettable & ~kTemporary;
    const uint32_t own = what == path ? 0 : kDirectory;
    // What this file system keeps: comes when it is set, goes when it is not.
    uint32_t kept = set(what, settable);
    kept &= ~set(what, kNormal);
    if (what == path && (kept & kHidden) == 0) GTEST_SKIP() << "no attributes are kept here";
    if (!OnRunningSystem()) {
      EXPECT_EQ(kept, settable);
    }
    for (const uint32_t attributes :
         {kReadOnly, kHidden | kSystem, kReadOnly | kArchive, settable, kNormal}) {
      EXPECT_EQ(set(what, attributes) & (kept | own), (attributes & kept) | own) << attributes;
    }
  }
}

TEST(FoldName, TakesEachLetterToItsUpperCase) {
  const struct {
    std::string_view name, folded;
  } cases[] = {
      {"", ""},
      {"Plain name.txt", "PLAIN NAME.TXT"},
      {"ävil.txt", "ÄVIL.TXT"},
      {"ñ ø ÿ", "Ñ Ø Ÿ"},
      {"čšž", "ČŠŽ"},
      {"αω ж", "ΑΩ Ж"},
      {"straße", "STRAßE"},                      // no letter becomes two
      {"ıſ", "ıſ"},                              // nor one of ASCII
      {"\xF0\x90\x90\xA8", "\xF0\x90\x90\xA8"},  // a letter of two units
      {"a\xFFz \xED\xA0\x80 \xC3", "A\xFFZ \xED\xA0\x80 \xC3"},
  };
  for (const auto& [name, folded] : cases) {
    EXPECT_EQ(FoldName(name), folded) << name;
    EXPECT_EQ(FoldName(folded), folded) << name;
    EXPECT_TRUE(EqualNames(name, folded)) << name;
  }
  EXPECT_FALSE(EqualNames("ävil", "avil"));
}

}  // namespace
}  // namespace quarnel
