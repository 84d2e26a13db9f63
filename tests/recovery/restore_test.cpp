#include "recovery/restore.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "recovery/archive.h"
#include "recovery/backup_fixture.h"
#include "recovery/restore_note.h"

namespace quarnel {
namespace {

constexpr std::string_view kDone = "Restore process completed successfully.";

class RestoreTest : public BackupTest {
 protected:
  void BeStrict() { settings.Save(setting::kStrict, 1); }
  void ForgetManifest(const BackupReport& report) {
    files().Delete(PointFile(report, restore_point::kManifest));
  }
  std::string Told() { return host.messages.empty() ? "" : host.messages.back().text; }

  // Archives with entries of any names.
  void WriteArchive(const std::string& path, const std::vector<std::string>& entries) {
    const std::string source = Make("source", "hostile");
    ArchiveWriter archive(files(), path, nullptr);
    for (const std::string& entry : entries) archive.Add(source, entry, *files().Stat(source));
    archive.Finish();
  }
};

TEST_F(RestoreTest, PutsBackWhatTheDescribedFormHolds) {
  for (const bool withManifest : {true, false}) {
    SetValue("Key", "a", Text("first"));
    SetValue("Key", "b", Text("second"));
    SetValue("Key", "n", {ValueType::kDword, std::string("\x07\0\0\0", 4)});
    SetValue("Key", "large", {ValueType::kDword, "\xFF\xFF\xFF\xFF"});
    SetValue("Key", "bytes", {ValueType::kBinary, "x"});
    results.lvwRegistryEntriesFound.Clear();
    AddTrace("Key");
    results.lvwFilesToBeDeleted.Clear();
    results.lvwTrackingCookieObjectrecognized.Clear();
    const std::string gone = Plant(Path("x\\y\\gone.exe"), "back");
    const std::string stays = Plant(Path("x\\stays.dll"), "old");
    const std::string cookie = Plant(Path("me@site.txt"), "C", true);
    host.virtualClock().Pass(std::chrono::seconds(1));
    const BackupReport report = backup.BackupSpyware();
    if (!withManifest) ForgetManifest(report);
    DeleteKeyTree(registry(), kRoot, Key("Key"), nullptr);
    DeleteTree(files(), Path("x\\y"));
    files().Delete(cookie);
    WriteWholeFile(files(), stays, "newer");

    const RestoreReport restored = restore.RestoreSpyware(report.stem);
    EXPECT_TRUE(restored.failures.empty());
    EXPECT_EQ(restored.files, 2U);
    EXPECT_EQ(restored.present, 1U);
    EXPECT_EQ(Read(gone), "back");
    EXPECT_EQ(Read(stays), "newer");
    EXPECT_EQ(Read(cookie), "C");
    // The first value is lost with its key, and only texts and numbers come back.
    const std::string key = Key("Key");
    EXPECT_EQ(RegistryDump(), (std::map<std::string, std::string>{
                                  {std::string(kTestKey), "key"},
                                  {key, "key"},
                                  {key + " -> b", "1:" + Text("second").data},
                                  {key + " -> n", "4:" + std::string("\x07\0\0\0", 4)}}));
    ASSERT_EQ(host.messages.size(), 1U);
    EXPECT_EQ(Told(), kDone);
    EXPECT_EQ(host.messages[0].icon, MessageIcon::kInformation);
    EXPECT_FALSE(page.picBackupProgress.Visible());
    host.messages.clear();
    DeleteKeyTree(registry(), kRoot, kTestKey, nullptr);
  }
}

TEST_F(RestoreTest, GoesOnWithoutAFileOfThePoint) {
  SetValue("Key", "a", Text("first"));
  SetValue("Key", "b", Text("second"));
  AddTrace("Key");
  const std::string cookie = Plant(Path("me@site.txt"), "C", true);
  const BackupReport report = backup.BackupSpyware();
  ForgetManifest(report);
  files().Delete(PointFile(report, restore_point::kFiles));
  files().Delete(cookie);
  DeleteKeyTree(registry(), kRoot, Key("Key"), nullptr);
  restore.RestoreSpyware(report.stem);
  EXPECT_EQ(Read(cookie), "C");
  EXPECT_TRUE(RegistryDump().contains(Key("Key") + " -> b"));
  files().Delete(cookie);
  files().Delete(PointFile(report, restore_point::kRegistry));
  files().Delete(PointFile(report, restore_point::kCookies));
  restore.RestoreSpyware(report.stem);
  EXPECT_FALSE(Exists(cookie));
  EXPECT_EQ(host.messages.size(), 2U);
  EXPECT_EQ(Told(), kDone);
  // Who asked for exactness hears that there is nothing to go by.
  BeStrict();
  restore.RestoreSpyware(report.stem);
  EXPECT_NE(Told().find("_MANIFEST.bkp - it is missing"), std::string::npos) << Told();
}

TEST_F(RestoreTest, SkipsLinesThatAreNoValue) {
  SetValue("Key", "there", Text("x"));
  CreateFolders(files(), BackupFolder(program));
  const std::string prefix = "Threat[[-]]-2147483647[[-]]" + Key("Key");
  WriteWholeFile(files(), RestorePointFile(program, "1_2", restore_point::kRegistry),
                 "\r\nfive[[-]]fields[[-]]only[[-]]here[[-]]5\r\n" + prefix +
                     "[[-]]seven[[-]]a[[-]]b[[-]]1\r\n" + prefix + "[[-]]unknown[[-]]a[[-]]9\r\n" +
                     prefix + "[[-]]good[[-]]a[[-]]1\r\n" + prefix + "[[-]]last[[-]]8[[-]]4");
  restore.RestoreSpyware("1_2");
  const std::string key = Key("Key");
  EXPECT_EQ(RegistryDump(), (std::map<std::string, std::string>{
                                {std::string(kTestKey), "key"},
                                {key, "key"},
                                {key + " -> there", "1:" + Text("x").data},
                                {key + " -> good", "1:" + Text("a").data},
                                {key + " -> last", "4:" + std::string("\x08\0\0\0", 4)}}));
  // The second and the third line.
  EXPECT_EQ(Split(Told(), "\r\n").size(), 3U) << Told();
}

// Without a manifest nothing tells what is missing but the archive itself.
TEST_F(RestoreTest, NamesEveryEntryThatDidNotComeBack) {
  const struct {
    const char* what;
    std::function<void(std::string& archive)> damage;
    std::string named;
    bool folderInPlace = false;
  } cases[] = {
      {"a flipped byte", [](std::string& a) { a[a.find("second content")] = '!'; }, "second.exe"},
      {"no end", [](std::string& a) { a.resize(a.size() - 30); }, "_FILESBK.bkp"},
      {"no entries", [](std::string& a) { a.clear(); }, "_FILESBK.bkp - it is empty"},
      {"a folder in its place", [](std::string&) {}, "second.exe", true},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    results.lvwFilesToBeDeleted.Clear();
    const std::string first = Plant(Path("first.exe"), "first content");
    const std::string second = Plant(Path("second.exe"), "second content");
    const BackupReport report = backup.BackupSpyware();
    ForgetManifest(report);
    files().Delete(first);
    files().Delete(second);
    std::string bytes = Read(PointFile(report, restore_point::kFiles));
    test.damage(bytes);
    WriteWholeFile(files(), PointFile(report, restore_point::kFiles), bytes);
    if (test.folderInPlace) files().CreateFolder(second);
    EXPECT_FALSE(restore.RestoreSpyware(report.stem).Complete());
    EXPECT_NE(Told().find(test.named), std::string::npos) << Told();
    host.virtualClock().Pass(std::chrono::seconds(1));
  }
}

// What a manifest had to tell of the registry is not known when it is damaged.
TEST_F(RestoreTest, NamesAMissingTextWhenTheManifestIsDamaged) {
  SetValue("Key", "v", Text("x"));
  AddTrace("Key");
  const BackupReport report = backup.BackupSpyware();
  WriteWholeFile(files(), PointFile(report, restore_point::kManifest), "cut");
  files().Delete(PointFile(report, restore_point::kRegistry));
  EXPECT_FALSE(restore.RestoreSpyware(report.stem).Complete());
  EXPECT_NE(Told().find("_REGBK.bkp - the file is missing"), std::string::npos) << Told();
}

TEST(Manifests, OfNothingButFaultsTakeLittleRoom) {
  for (const std::string& line : {std::string("\n"), std::string(70, 'x') + "\t\t\t\n"}) {
    std::string text;
    for (int i = 0; i < 5000; ++i) text += line;
    const ManifestReading reading = ReadManifest(text, "1_2");
    EXPECT_EQ(reading.damage.size(), 100U);
    EXPECT_EQ(reading.faults, 5002U);  // head and end are missing, too
  }
}

TEST_F(RestoreTest, StrictlyBringsBackEverythingExactly) {
  BeStrict();
  for (uint32_t type = 0; type <= 12; ++type) {
    if (type == 6) continue;  // links are not values like others
    const std::string name = "Type " + std::to_string(type);
    SetValue("Key", name, {static_cast<ValueType>(type), std::string("o\0d\xFF\r\n%", 7)});
    SetValue("Key", name + " empty", {static_cast<ValueType>(type), {}});
  }
  SetValue("Key", "", Text("default"));
  SetValue("Key", "\xC3\xA4 [[-]] = \t;", Text("\xE2\x82\xAC"));
  SetValue("Key", std::string(300, 'n'), {ValueType::kBinary, std::string(70000, '\x80')});
  for (const char* name : {"Key\\Empty", "Key\\Deep\\er\\est", "Key\\\xC3\xB6 %41", "Single"}) {
    CreateNewKey(registry(), kRoot, Key(name));
  }
  SetValue("Single", "only", {ValueType::kExpandString, Text("%TEMP%").data});
  SetValue("Values", "Taken", {ValueType::kMultiString, Text("a").data + Text("").data});
  SetValue("Values", "Stays", Text("x"));
  AddTrace("kEY");
  AddTrace("Single", "ONLY");
  AddTrace("Values", "taken");
  const auto before = RegistryDump();

  using namespace file_attribute;
  struct Planted {
    std::string path;
    std::string bytes;
    uint32_t attributes;
  };
  std::vector<Planted> planted = {
      {Path("a\\plain.exe"), "one", kNormal},
      {Path("b\\plain.exe"), "two", kReadOnly},
      {Path("b\\empty.dat"), "", kHidden | kArchive},
      {Path("c\\sys.dll"), "S", kSystem | kHidden},
      {Path("c\\\xC3\xA4\xE2\x82\xAC 50%.txt"), std::string(300000, 'z'), kNormal},
      {Path(std::string(200, 'l') + ".long"), "long", kReadOnly | kHidden},
  };
  if (!machineFolder().empty()) {
    std::filesystem::create_directory(machineFolder() + "/drive_d");
    planted.push_back({"D:" + planted[0].path.substr(2), "on D", kNormal});
    planted.push_back({Path("a\\latin\xE4.exe"), "no UTF-8", kNormal});
  }
  const auto moment = [](int second) {
    return FileTime(std::chrono::sys_days(std::chrono::days(12'500)) +
                    std::chrono::seconds(second) + FileTime::duration(1234567));
  };
  std::vector<DirectoryEntry> facts;
  std::vector<FileTimes> times;
  for (const Planted& file : planted) {
    Plant(file.path, file.bytes, facts.size() % 2 == 1);
    files().SetTimes(file.path,
                     {.created = moment(1), .accessed = moment(2), .modified = moment(3)});
    files().SetAttributes(file.path, file.attributes);
    times.push_back(files().Times(file.path));
    facts.push_back(*files().Stat(file.path));
  }
  const BackupReport report = backup.BackupSpyware();
  EXPECT_TRUE(report.Complete());
  EXPECT_EQ(report.files + report.cookies, planted.size());
  EXPECT_EQ(report.registryTraces, 3U);

  // Once with everything gone, once changed, once untouched.
  for (const int round : {0, 1, 2}) {
    if (round == 0) DeleteKeyTree(registry(), kRoot, kTestKey, nullptr);
    for (const Planted& file : planted) {
      if (round == 2) break;
      files().SetAttributes(file.path, kNormal);
      if (round == 0) {
        files().Delete(file.path);
      } else {
        WriteWholeFile(files(), file.path, "changed");
        files().SetAttributes(file.path, kReadOnly);
      }
    }
    if (round == 0) SetValue("Values", "Stays", Text("x"));
    if (round == 0) DeleteTree(files(), Path("b"));
    if (round == 1) SetValue("Key", "", Text("changed"));
    const RestoreReport restored = restore.RestoreSpyware(report.stem);
    for (const RestoreFailure& failure : restored.failures) {
      ADD_FAILURE() << round << ": " << failure.what << " - " << failure.reason;
    }
    EXPECT_EQ(RegistryDump(), before) << round;
    for (size_t i = 0; i < planted.size(); ++i) {
      ASSERT_TRUE(Exists(planted[i].path)) << round << planted[i].path;
      const auto entry = *files().Stat(planted[i].path);
      EXPECT_EQ(entry.name, facts[i].name) << round;
      EXPECT_EQ(entry.attributes, facts[i].attributes) << round << entry.name;
      EXPECT_EQ(files().Times(planted[i].path), times[i]) << round << entry.name;
      EXPECT_EQ(Read(planted[i].path), planted[i].bytes) << round;
    }
    EXPECT_EQ(Told(), kDone);
    EXPECT_EQ(files().List(Path("a")).size(), machineFolder().empty() ? 1U : 2U);
  }
  // An intact manifest changes nothing of what a plain restore brings back.
  settings.Save(setting::kStrict, 0);
  files().Delete(planted[0].path);
  restore.RestoreSpyware(report.stem);
  EXPECT_EQ(Read(planted[0].path), "one");
  EXPECT_NE(files().Stat(planted[0].path)->modified, facts[0].modified);
}

// What may befall the files of a restore point, and how many of its five items are lost with it.
TEST_F(RestoreTest, NamesWhatIsDamagedAndRestoresTheRest) {
  const std::vector<std::string> paths = {Path("first.exe"), Path("second.exe"), Path("third.exe")};
  SetValue("Key", "one", Text("1"));
  SetValue("Key", "two", Text("2"));
  AddTrace("Key", "one");
  AddTrace("Key", "two");
  for (const std::string& path : paths) Plant(path, "content of " + path);
  const BackupReport other = backup.BackupSpyware();
  host.virtualClock().Pass(std::chrono::seconds(1));
  for (const std::string& path : paths) WriteWholeFile(files(), path, "CONTENT of " + path);
  const BackupReport report = backup.BackupSpyware();

  using Damage = std::function<std::string(const std::string&)>;
  const auto flipAt = [](std::string_view at) -> Damage {
    return [at](std::string text) {
      const size_t place = text.find(at);
      EXPECT_NE(place, std::string::npos) << at;
      text[place] = static_cast<char>(text[place] ^ 0x20);
      return text;
    };
  };
  const auto cutAt = [](std::string_view at) -> Damage {
    return [at](const std::string& text) { return text.substr(0, text.find(at)); };
  };
  const auto cutLast = [](size_t count) -> Damage {
    return [count](const std::string& text) { return text.substr(0, text.size() - count); };
  };
  const auto become = [](const std::string& bytes) -> Damage {
    return [bytes](const std::string&) { return bytes; };
  };
  const auto cutSecond = [](const std::string& text) {
    return text.substr(0, text.find("second.exe", text.find("second.exe") + 1) + 3);
  };
  const auto flipSum = [](std::string text) {
    char& digit = text[text.rfind('\n', text.find("third.exe")) + 1];
    digit = digit == '0' ? '1' : '0';
    return text;
  };
  const auto cutHead = [](const std::string& text) { return text.substr(text.find('\n') + 1); };
  using namespace restore_point;
  const std::string all = "11111";
  const std::string otherArchive = Read(PointFile(other, kFiles));
  const std::string otherManifest = Read(PointFile(other, kManifest));
  const struct {
    const char* what;
    std::string_view ending;
    Damage damage;
    // Which of the three files and two values come back: strictly, and plainly.
    std::string strict;
    std::string plain;
    std::string named;
  } cases[] = {
      {"flipped byte of a file", kFiles, flipAt("CONTENT"), "01111", "01111", "first.exe"},
      {"archive without its end", kFiles, cutLast(30), all, all, ""},
      {"archive without its directory", kFiles, cutAt("PK\1\2"), all, all, ""},
      {"archive cut in its second file", kFiles, cutSecond, "10011", "10011", "third.exe"},
      {"empty archive", kFiles, become(""), "00011", "00011", "second.exe"},
      {"another's archive", kFiles, become(otherArchive), "00011", "00011", "second.exe"},
      {"flipped registry line", kRegistry, flipAt("[[-]]one"), all, "11101", "one"},
      {"registry cut in its last line", kRegistry, cutLast(4), all, "11110", "two"},
      {"flipped path", kManifest, flipAt("second.exe"), "10111", all, "econd.exe"},
      {"flipped bytes of a value", kManifest, flipAt("one\t1\t3"), "11101", all, "Value Name"},
      {"flipped sum", kManifest, flipSum, "11011", all, "third.exe"},
      {"manifest cut in a file", kManifest, cutAt("third.exe"), "11011", all, "third.exe"},
      {"flipped record of a line", kManifest, flipAt("text\t"), all, all, "one"},
      {"manifest without its end", kManifest, cutLast(30), all, all, "end of the manifest"},
      {"manifest without its head", kManifest, cutHead, all, all, "head of the manifest"},
      {"empty manifest", kManifest, become(""), "00000", all, "second.exe"},
      {"another's manifest", kManifest, become(otherManifest), "00000", all, "second.exe"},
      {"a manifest of binary", kManifest, become(std::string(5000, '\xFF')), "00000", all,
       "second.exe"},
  };
  for (const bool strict : {true, false}) {
    settings.Save(setting::kStrict, strict);
    for (const auto& test : cases) {
      SCOPED_TRACE(Join({test.what, strict ? "strict" : "plain"}, ", "));
      const std::string damagedFile = PointFile(report, test.ending);
      const std::string whole = Read(damagedFile);
      WriteWholeFile(files(), damagedFile, test.damage(whole));
      for (const std::string& path : paths) IgnoringErrors([&] { files().Delete(path); });
      DeleteValue(registry(), kRoot, Key("Key"), "one");
      DeleteValue(registry(), kRoot, Key("Key"), "two");

      const RestoreReport restored = restore.RestoreSpyware(report.stem);
      std::string back;
      for (const std::string& path : paths) {
        back += Exists(path) ? '1' : '0';
        if (!Exists(path)) continue;
        EXPECT_EQ(Read(path), "CONTENT of " + path);
      }
      const auto dump = RegistryDump();
      for (const char* name : {"one", "two"}) {
        back += dump.contains(Key("Key") + " -> " + name) ? '1' : '0';
      }
      EXPECT_EQ(back, strict ? test.strict : test.plain);
      EXPECT_EQ(files().List(Scratch()).size(),
                1U + static_cast<size_t>(std::count(back.begin(), back.begin() + 3, '1')));
      // A damaged manifest is told of even when all came back unchecked.
      const bool unchecked = !strict && test.ending == kManifest;
      EXPECT_EQ(restored.Complete() && restored.faults.empty(), Told() == kDone);
      EXPECT_EQ(restored.Complete(), back == all && (!strict || test.ending != kManifest))
          << Told();
      if (back != all || unchecked) {
        EXPECT_NE(Told().find(test.named), std::string::npos) << Told();
      }
      WriteWholeFile(files(), damagedFile, whole);
    }
  }
}

TEST_F(RestoreTest, NeverLeavesTheRoot) {
  const std::string root = Path("Program").substr(0, 3);
  const std::string inside = EntryName(Path("inside"));
  std::vector<std::string> hostile = {"../outside.exe",           "/outside.exe",
                                      "C:/outside.exe",           "C:outside.exe",
                                      "//host/share/outside.exe", "\\\\?\\C:\\outside.exe"};
  for (const std::string_view name :
       {"/../../../outside.exe", "\\..\\..\\..\\outside.exe", "/NUL", "/com1.txt",
        "/file.txt:stream", "/a\nb", "//double", "/./dot"}) {
    hostile.push_back(inside + std::string(name));
  }
  std::vector<std::string> entries = hostile;
  entries.push_back(inside + "/good.exe");
  entries.push_back("|D/" + inside + "/side.exe");
  entries.push_back(inside + "/folder/");
  CreateFolders(files(), BackupFolder(program));
  WriteArchive(RestorePointFile(program, "1_2", restore_point::kFiles), entries);
  const auto rootBefore = files().List(root).size();
  const RestoreReport restored = restore.RestoreSpyware("1_2");
  EXPECT_EQ(restored.failures.size(), hostile.size() + 1);
  EXPECT_EQ(restored.files, 1U);
  EXPECT_NE(Told().find("side.exe - only strict mode"), std::string::npos) << Told();
  const auto made = files().List(Path("inside"));
  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].name, "good.exe");
  EXPECT_EQ(files().List(root).size(), rootBefore);
  const std::string logged = LogText();
  EXPECT_NE(logged.find("outside.exe"), std::string::npos);
  EXPECT_NE(logged.find("RestoreFiles"), std::string::npos);
}

TEST_F(RestoreTest, WhatAKilledProgramLeftGoesAtTheNextStart) {
  for (const bool withManifest : {true, false}) {
    const std::string path = Plant(Path("x\\begun.exe"), "x");
    const BackupReport report = backup.BackupSpyware();
    if (!withManifest) ForgetManifest(report);
    const std::string backups = BackupFolder(program) + "\\";
    const std::string left[] = {TemporaryName(path), backups + "~0123abcd.tmp"};
    const std::string others[] = {Path("x\\~0123abcd.tmp"), backups + "~0123ABCX.tmp", path};
    for (const std::string& file : left) WriteWholeFile(files(), file, "half");
    for (const std::string& file : others) WriteWholeFile(files(), file, "theirs");
    ClearLeftovers(files(), program);
    EXPECT_TRUE(Exists(left[0]));  // no restore was cut off
    EXPECT_FALSE(Exists(left[1]));
    WriteWholeFile(files(), backups + "Restoring.txt", report.stem);
    ClearLeftovers(files(), program);
    EXPECT_FALSE(Exists(left[0])) << withManifest;
    for (const std::string& file : others) EXPECT_TRUE(Exists(file)) << file;
    EXPECT_FALSE(Exists(backups + "Restoring.txt"));
    bool noted = false;
    host.onEvents = [&] { noted |= Exists(backups + "Restoring.txt"); };
    restore.RestoreSpyware(report.stem);
    EXPECT_TRUE(noted);
    host.onEvents = nullptr;
    EXPECT_FALSE(Exists(backups + "Restoring.txt"));
    host.virtualClock().Pass(std::chrono::seconds(1));
  }
}

// Damage at any place of an archive without a manifest costs entries, and never more.
TEST_F(RestoreTest, SurvivesAnyArchive) {
  std::vector<std::string> entries(5);
  for (size_t i = 0; i < entries.size(); ++i) {
    entries[i] = EntryName(Path("inside\\file" + std::to_string(i)));
  }
  const std::string path = RestorePointFile(program, "1_2", restore_point::kFiles);
  CreateFolders(files(), BackupFolder(program));
  WriteArchive(path, entries);
  const std::string whole = Read(path);
  std::mt19937 random(20080614);
  const auto next = [&](size_t below) { return random() % below; };
  const int rounds = machineFolder().empty() ? 50 : 400;
  for (int round = 0; round < rounds; ++round) {
    std::string bytes = whole;
    for (size_t change = 0; change <= next(4); ++change) {
      switch (next(4)) {
        case 0:
          bytes[next(bytes.size())] = static_cast<char>(next(256));
          break;
        case 1:
          bytes.resize(1 + next(bytes.size()));
          break;
        case 2:
          bytes.insert(next(bytes.size()), bytes.substr(next(bytes.size()), next(60)));
          break;
        default:
          bytes.erase(next(bytes.size()), next(60));
          bytes += 'P';
      }
    }
    WriteWholeFile(files(), path, bytes);
    restore.RestoreSpyware("1_2");
    if (files().Stat(Path("inside"))) {
      for (const DirectoryEntry& file : files().List(Path("inside"))) {
        EXPECT_FALSE(file.name.ends_with(".tmp")) << round;
      }
    }
    DeleteTree(files(), Path("inside"));
  }
  EXPECT_EQ(host.messages.size(), static_cast<size_t>(rounds));
}

}  // namespace
}  // namespace quarnel
