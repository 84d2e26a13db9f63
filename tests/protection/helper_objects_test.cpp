#include "protection/helper_objects.h"

#include <gmock/gmock.h>

#include "base/text.h"
#include "core/paths.h"
#include "platform/pe_writer.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

const std::string kObjects =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects";

class HelperObjectsTest : public PlatformTest {
 protected:
  HelperObjectsTest() { Clear(); }
  ~HelperObjectsTest() override { Clear(); }

  static constexpr int kMostObjects = 9;
  static std::string Id(int number) {
    return "{7E570000-0000-4000-8000-00000000000" + std::to_string(number) + "}";
  }
  static std::string Registration(int number) { return kObjects + "\\" + Id(number); }

  void Clear() {
    for (int i = 0; i < kMostObjects; ++i) {
      DeleteKeyTree(registry(), hive::kClassesRoot, "CLSID\\" + Id(i), nullptr);
      DeleteKeyTree(registry(), hive::kLocalMachine, Registration(i), nullptr);
    }
    IgnoringErrors([&] { files().Delete(record); });
  }
  void Register(int number, const std::string& name, const std::string& server,
                const std::string& value = "v") {
    const std::string classKey = "CLSID\\" + Id(number);
    RegCreateKeyValue(registry(), hive::kClassesRoot, classKey, "", name);
    RegCreateKeyValue(registry(), hive::kClassesRoot, classKey + "\\InprocServer32", "", server);
    RegCreateKeyValue(registry(), hive::kLocalMachine, Registration(number), "", value);
  }
  bool IsRegistered(int number) {
    std::unique_ptr<RegistryKey> key;
    return registry().Open(hive::kLocalMachine, Registration(number), registry_access::kRead,
                           key) == RegistryStatus::kSuccess;
  }
  std::string Server(const std::string& name, const std::string& company) {
    ProgramVersion version{ApplicationRecord(1, 2, 3, 4), company, "helper"};
    version.fixed.productVersionHigh = 5 << 16 | 6;
    return Make(name, MakeProgram(version));
  }
  void Refresh() { helpers.LoadBHOList(page.lvwBHOs); }
  ListView& list() { return page.lvwBHOs; }
  // The first row with its columns, and the number of its picture in front.
  Strings First() {
    Strings columns = {std::to_string(list().At(0).look.picture), list().At(0).text};
    for (const std::string& text : list().At(0).subItems) columns.push_back(text);
    return columns;
  }
  std::string LogText() { return Exists(log.Path()) ? Read(log.Path()) : std::string(); }

  std::string record = DataFolder(machine()) + "qk_bho.ini";
  TestHost host;
  Form form{host, "frmMain"};
  AdvancedToolsPage page{form};
  Settings settings{registry(), "Quarnel"};
  ErrorLog log{files(), machine(), host, "Quarnel"};
  HelperObjects helpers{{.page = page, .services = {platform(), host, settings, log}}};
};

TEST_F(HelperObjectsTest, RecordsWhatIsRegistered) {
  Refresh();
  EXPECT_TRUE(list().Empty());
  const std::string server = Server("bar.dll", "Example Company");
  Register(1, "Example Bar", server, "shown");
  Refresh();
  EXPECT_THAT(First(), ElementsAre("2", "Example Bar", server, "Example Company", "1.2.3.4",
                                   "5.6.3.4", "HKEY_LOCAL_MACHINE", Registration(1), "shown"));
  EXPECT_EQ(Read(record), "[Example Bar]\r\n7=shown\r\n2=Example Company\r\n1=" + server +
                              "\r\n3=1.2.3.4\r\n4=5.6.3.4\r\n5=HKEY_LOCAL_MACHINE\r\n6=" +
                              Registration(1) + "\r\n");

  // A file that has gone leaves its product version behind; an object that has gone stays.
  files().Delete(server);
  Refresh();
  EXPECT_THAT(First(), ElementsAre("2", "Example Bar", server, "", server, "5.6.3.4",
                                   "HKEY_LOCAL_MACHINE", Registration(1), "shown"));
  DeleteKey(registry(), hive::kLocalMachine, Registration(1));
  Refresh();
  EXPECT_EQ(list().Count(), 1U);
  // What is taken out of the record by hand is nowhere else.
  files().Delete(record);
  Refresh();
  EXPECT_TRUE(list().Empty());
}

TEST_F(HelperObjectsTest, RefreshWithoutNewsReadsNoServerAndWritesNothing) {
  const std::string server = Server("bar.dll", "Before");
  const FileTimes times = files().Times(server);
  Register(1, "Bar", server);
  Refresh();
  const FileTime past{std::chrono::sys_days(std::chrono::January / 2 / 2020)};
  files().SetModified(record, past);
  Server("bar.dll", "Behind");
  files().SetTimes(server, times);
  Refresh();
  EXPECT_EQ(list().At(0).SubItem(2), "Before");
  EXPECT_EQ(files().Times(record).modified, past);
  files().SetModified(server, past);
  Refresh();
  EXPECT_EQ(list().At(0).SubItem(2), "Behind");
  // A change of the record is shown, and kept where it concerns nothing that is registered.
  WriteWholeFile(files(), record, Read(record) + "DANGER=odd\r\n[Old]\r\n1=C:\\old.dll\r\n");
  Refresh();
  EXPECT_EQ(First().front(), "0");
  EXPECT_EQ(list().At(1).text + list().At(1).subItems.front(), "OldC:\\old.dll");
}

TEST_F(HelperObjectsTest, NamesThatLookLikeTheRecordsOwnMarks) {
  const std::pair<std::string, std::string> names[] = {
      {"a=b", "a=b"},     {"c]d", "c]d"}, {";e", ";e"},           {"[f]", "[f]"},
      {"\"g\"", "\"g\""}, {" h ", "h"},   {"i\r\n[j]", "i  [j]"}, {"", ""}};
  int number = 0;
  for (const auto& [name, shown] : names) Register(number++, name, "C:\\none.dll");
  Refresh();
  ASSERT_EQ(list().Count(), std::size(names));
  for (size_t row = 0; row < std::size(names); ++row) {
    SCOPED_TRACE(names[row].second);
    EXPECT_EQ(list().At(row).text, names[row].second);
    host.answers = {Answer::kYes};
    list().SelectByUser(row);
    page.lblBlockBHO.ClickByUser();
    Refresh();
    EXPECT_EQ(list().At(row).look.picture, helper_state::kBlocked);
    EXPECT_FALSE(IsRegistered(static_cast<int>(row)));
  }
}

TEST_F(HelperObjectsTest, BlockedOneIsAllowedAgain) {
  page.lblBlockBHO.ClickByUser();
  Register(1, "First", "C:\\first.dll", "one");
  Register(2, "Second", "C:\\second.dll", "two");
  RegCreateKeyValue(registry(), hive::kLocalMachine, Registration(2) + "\\Below", "x", "y");
  Refresh();
  EXPECT_FALSE(page.lblBlockBHO.Enabled());
  list().SelectByUser(1);
  EXPECT_TRUE(page.lblBlockBHO.Enabled());
  // While the user thinks it over another one is registered and the list is filled anew.
  host.answers = {Answer::kNo, Answer::kYes};
  page.lblBlockBHO.ClickByUser();
  EXPECT_TRUE(IsRegistered(2));
  EXPECT_EQ(host.messages.back().title, "Block Browser Helper Object");
  EXPECT_EQ(host.messages.back().text,
            "Are you sure you would like to block Second from your available Browser Helper "
            "Objects in Internet Explorer? Blocking this BHO can cause problems for application "
            "that requires this program to operate properly. You can un-block a file using the "
            "[Allow this BHO].\r\n\r\nBlock now?");
  host.onEvents = [&] {
    host.onEvents = nullptr;
    Register(0, "New", "C:\\new.dll");
    IgnoringErrors([&] { files().Delete(record); });
    Refresh();
  };
  page.lblBlockBHO.ClickByUser();
  EXPECT_EQ(host.messages.back().title, "Block Successful");
  EXPECT_EQ(host.messages.back().text,
            "BHO Second has been blocked. You will need to restart all the instances of Internet "
            "Explorer before this change takes effects.");
  EXPECT_FALSE(IsRegistered(2));
  EXPECT_TRUE(IsRegistered(1));
  ASSERT_EQ(list().Count(), 3U);
  EXPECT_EQ(list().At(2).look.picture, helper_state::kBlocked);
  Refresh();
  EXPECT_EQ(list().At(2).look.picture, helper_state::kBlocked);

  host.answers = {Answer::kYes};
  list().SelectByUser(2);
  page.lblAllowBHO.ClickByUser();
  EXPECT_EQ(host.messages.back().text, "Are you sure you want to restore BHO Second?");
  EXPECT_EQ(host.messages.back().title, "Restore Browser Helper Object");
  EXPECT_EQ(QueryText(registry(), hive::kLocalMachine, Registration(2), ""), "two");
  EXPECT_EQ(list().At(2).look.picture, helper_state::kAllowed);
}

TEST_F(HelperObjectsTest, ChangedRecordLeadsToNoOtherKey) {
  const std::string other = "SOFTWARE\\QuarnelTest";
  for (const std::string& key :
       {std::string(), other, kObjects, kObjects + "\\", Registration(1) + "\\..", other + "\\x"}) {
    SCOPED_TRACE(key);
    CreateNewKey(registry(), hive::kLocalMachine, other + "\\x");
    WriteWholeFile(files(), record, "[Odd]\r\n6=" + key + "\r\n7=x\r\n");
    Refresh();
    IgnoringErrors([&] { files().Delete(log.Path()); });
    for (Label* label : {&page.lblBlockBHO, &page.lblAllowBHO}) {
      host.answers = {Answer::kYes};
      list().SelectByUser(0);
      label->ClickByUser();
    }
    EXPECT_THAT(LogText(), HasSubstr("lblBlockBHO_Click in frmMain"));
    EXPECT_THAT(LogText(), HasSubstr("lblAllowBHO_Click in frmMain"));
    EXPECT_THAT(EnumSubKeys(registry(), hive::kLocalMachine, other), ElementsAre("x"));
    EXPECT_EQ(QueryText(registry(), hive::kLocalMachine, other, ""), "");
  }
  DeleteKeyTree(registry(), hive::kLocalMachine, other, nullptr);
}

}  // namespace
}  // namespace quarnel
