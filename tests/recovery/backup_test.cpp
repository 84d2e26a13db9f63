#include "recovery/backup.h"

#include <gtest/gtest.h>

#include "recovery/archive.h"
#include "recovery/backup_fixture.h"
#include "recovery/manifest.h"

namespace quarnel {
namespace {

RawValue Typed(ValueType type, RawValue value) {
  value.type = type;
  return value;
}

std::vector<std::string> Entries(Files& files, const std::string& path) {
  std::vector<std::string> names;
  ReadArchive(files, path, [&](ArchiveEntry& entry) {
    std::string line = entry.Name() + "=";
    entry.Read([&](std::string_view piece) { line += piece; });
    names.push_back(line);
  });
  return names;
}

TEST_F(BackupTest, WritesTheFiveFilesAsTheyAreDescribed) {
  SetValue("Mixed", "Text", Text("a value"));
  SetValue("Mixed", "Expand", Typed(ValueType::kExpandString, Text("%PATH%")));
  SetValue("Mixed", "Bytes", {ValueType::kBinary, std::string("\x0A\xFF\x00", 3)});
  SetValue("Mixed", "Seven", {ValueType::kDword, std::string("\x07\0\0\0", 4)});
  SetValue("Mixed", "Most", {ValueType::kDword, "\xFF\xFF\xFF\xFF"});
  RawValue list = Text("one");
  list.data += Text("two").data + std::string(2, '\0');
  SetValue("Mixed", "List", Typed(ValueType::kMultiString, list));
  SetValue("Mixed", "Wide", {ValueType::kQword, std::string(8, '\1')});
  for (const char* name :
       {"text", "Expand", "Bytes", "Seven", "Most", "List", "Wide", "vanished"}) {
    AddTrace("Mixed", name);
  }
  // A key's values stand once more for each of its subkeys.
  SetValue("Tree", "", Text("default"));
  SetValue("Tree\\Below", "v", Text("deep"));
  AddTrace("Tree");
  const std::string first = Plant(Path("one\\a.exe"), "A");
  const std::string hidden = Plant(Path("one\\h.dll"), "H");
  files().SetAttributes(hidden, file_attribute::kHidden);
  AddRow(Path("one\\gone.txt"));
  const std::string cookie = Plant(Path("cookies\\me@site[1].txt"), "C", true);
  host.virtualClock().SetNow(std::chrono::local_days(std::chrono::year(2008) / 6 / 14) +
                             std::chrono::milliseconds(37516250));

  const BackupReport report = backup.BackupSpyware();
  EXPECT_EQ(report.stem, "37516.25_20080614102516");
  EXPECT_EQ(report.folder, program.ProgramFolder() + "\\Backup");
  EXPECT_EQ(report.registryTraces, 8U);
  EXPECT_EQ(report.files, 2U);
  EXPECT_EQ(report.cookies, 1U);
  EXPECT_TRUE(report.Complete());

  const auto row = [](std::string_view key, std::string_view name, std::string_view data,
                      std::string_view type) {
    return Join({"Threat", "-2147483647", Key(key), std::string(name), std::string(data),
                 std::string(type)},
                "[[-]]") +
           "\r\n";
  };
  EXPECT_EQ(Read(PointFile(report, restore_point::kRegistry)),
            row("Mixed", "text", "a value", "1") + row("Mixed", "Expand", "", "2") +
                row("Mixed", "Bytes", "0AFF00", "3") + row("Mixed", "Seven", "007", "4") +
                row("Mixed", "Most", "4294967295", "4") + row("Mixed", "List", "one", "7") +
                row("Mixed", "Wide", "", "11") + row("Mixed", "vanished", "", "0") +
                row("Tree", "", "default", "1") + row("Tree\\Below", "v", "deep", "1") +
                row("Tree", "", "default", "1"));
  EXPECT_EQ(Read(PointFile(report, restore_point::kFileDetails)),
            first + "[[-]]Trojan[[-]]Threat\r\n" + hidden + "[[-]]Trojan[[-]]Threat\r\n" +
                Path("one\\gone.txt") + "[[-]]Trojan[[-]]Threat\r\n");
  EXPECT_EQ(Read(PointFile(report, restore_point::kCookieDetails)), cookie + "[[-]]File\r\n");
  EXPECT_EQ(Entries(files(), PointFile(report, restore_point::kFiles)),
            (Strings{EntryName(first) + "=A", EntryName(hidden) + "=H"}));
  EXPECT_EQ(Entries(files(), PointFile(report, restore_point::kCookies)),
            Strings{EntryName(cookie) + "=C"});
  EXPECT_EQ(files().List(report.folder).size(), 6U);
  EXPECT_FALSE(page.picBackupProgress.Visible());
  EXPECT_TRUE(page.lvwRegBackup.Empty());
  EXPECT_EQ(page.lblBackupProgress.Caption(), "Taking cookies backup. 100% completed.");
}

TEST_F(BackupTest, MakesEmptyFilesOfAnEmptyResult) {
  const BackupReport report = backup.BackupSpyware();
  EXPECT_TRUE(report.Complete());
  EXPECT_EQ(Read(PointFile(report, restore_point::kRegistry)), "");
  EXPECT_TRUE(Entries(files(), PointFile(report, restore_point::kFiles)).empty());
  EXPECT_EQ(files().List(report.folder).size(), 6U);
}

TEST_F(BackupTest, LosesTheRegistryTextAndNoMoreToAVanishedKey) {
  SetValue("Stays", "v", Text("x"));
  AddTrace("Stays", "v");
  AddTrace("Gone", "v");
  AddTrace("Stays");
  const BackupReport report = backup.BackupSpyware();
  EXPECT_FALSE(Exists(PointFile(report, restore_point::kRegistry)));
  ASSERT_EQ(report.failures.size(), 1U);
  EXPECT_EQ(report.failures[0].what, PointFile(report, restore_point::kRegistry));
  const auto reading = ReadManifest(Read(PointFile(report, restore_point::kManifest)), report.stem);
  EXPECT_EQ(reading.manifest.values.size(), 2U);
  EXPECT_TRUE(reading.manifest.texts.empty());
}

TEST_F(BackupTest, EndsAKeysValuesWhereTheBuffersEnd) {
  SetValue("Large", "1", Text("first"));
  SetValue("Large", "2", {ValueType::kBinary, std::string(256, 'x')});
  SetValue("Large", "3", Text("behind"));
  AddTrace("Large");
  const BackupReport report = backup.BackupSpyware();
  const std::string text = Read(PointFile(report, restore_point::kRegistry));
  EXPECT_NE(text.find("first"), std::string::npos);
  EXPECT_EQ(text.find("behind"), std::string::npos);
}

TEST_F(BackupTest, LeavesOutWhatCannotBeStoredAndSaysSo) {
  Plant(Path("a.exe"), "A");
  // Folders stand where files of the restore point are to come, and the log: what that cannot take
  // is not hidden by it.
  const std::string stem = StemOf(host.clock().Now());
  for (const std::string_view ending : {restore_point::kRegistry, restore_point::kFiles}) {
    CreateFolders(files(), RestorePointFile(program, stem, ending) + "\\x");
  }
  SetValue("Stays", "v", Text("x"));
  AddTrace("Stays", "v");
  files().CreateFolder(log.Path());
  const BackupReport report = backup.BackupSpyware();
  files().DeleteFolder(log.Path());
  EXPECT_EQ(report.files, 0U);
  ASSERT_EQ(report.failures.size(), 2U);
  EXPECT_EQ(report.failures[0].what, PointFile(report, restore_point::kRegistry));
  EXPECT_EQ(report.failures[1].what, PointFile(report, restore_point::kFiles));
  EXPECT_FALSE(Reporting(log, "next", [] { throw RuntimeError(ErrorNumber::kOverflow); }));
  EXPECT_NE(LogText().find("BackupRegistry"), std::string::npos);
  EXPECT_NE(LogText().find("BackupFiles"), std::string::npos);
  EXPECT_TRUE(Exists(PointFile(report, restore_point::kFileDetails)));
  EXPECT_TRUE(ReadManifest(Read(PointFile(report, restore_point::kManifest)), report.stem)
                  .manifest.files.empty());
}

}  // namespace
}  // namespace quarnel
