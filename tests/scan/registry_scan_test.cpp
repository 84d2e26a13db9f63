#include "scan/registry_scan.h"

#include <gmock/gmock.h>

#include "base/text.h"
#include "scan/folders.h"
#include "scan/scan_fixture.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RegistryScanTest : public ScanTest {
 protected:
  RegistryScan registryScan{context, registry()};

  void Value(std::string_view key, std::string_view name) {
    RegCreateKeyValue(registry(), kRoot, Key(key), name, std::string("data"));
  }

  // A line below HKEY_CURRENT_USER with key and value name as they stand in the signature.
  static std::string Line(std::string_view key, std::string_view valueName,
                          std::string_view name = "Threat") {
    std::string line = "Company,";
    line.append(name).append(",1,1,").append(key).append(",").append(valueName);
    return line + ",\n";
  }

  // The traces that a scan finds, each without its hive and the test's own key.
  std::vector<std::string> Scan(const std::string& source) {
    resultsPage.lvwRegistryEntriesFound.Clear();
    Install({.registry = source});
    registryScan.ScanRegistry();
    std::vector<std::string> traces;
    for (const ListRow& row : resultsPage.lvwRegistryEntriesFound.Rows()) {
      const std::string trace(RegistryTrace::CompleteKey(row));
      const std::string before = "HKEY_CURRENT_USER\\" + std::string(kTestKey) + "\\";
      EXPECT_TRUE(StartsWithText(trace, before)) << trace;
      traces.push_back(trace.substr(std::min(before.size(), trace.size())));
    }
    return traces;
  }
};

TEST_F(RegistryScanTest, FormsOfKeyAndValueName) {
  Value("Plain", "Name");
  const std::string windows = GetFolder(machine(), 37).front();
  Value("Plain", windows + "evil.dll");
  Value("Plain", "it's " + machine().UserName());
  Value("Tree\\Sub", "x");
  const std::string key = Key("Plain");
  const struct {
    std::string key, valueName;
    std::vector<std::string> traces;
  } kCases[] = {
      {key, "Name", {"PLAIN -> Value Name: NAME"}},
      {"KEY:" + key, "KVN:Name", {"Plain -> Value Name: Name"}},
      {key, "Other", {}},
      {Key("Tree"), "", {"TREE -> Value Name: "}},
      {Key("Missing"), "", {}},
      {"CB:" + key, "Name", {"PLAIN -> Value Name: NAME"}},
      {"CB:" + key + "\\Name", "", {"PLAIN -> Value Name: NAME"}},
      {"CB:NoBackslash", "", {}},
      {key, "[[WINDOWS]]evil.dll", {"PLAIN -> Value Name: " + windows + "EVIL.DLL"}},
      {key, "KVN:[[WINDOWS]]evil.dll", {"PLAIN -> Value Name: " + windows + "evil.dll"}},
      {key, "[[WINDOWS", {}},  // no closing mark: no test at all
      // The word is taken for that of a folder, which it is not: the rest alone is left.
      {key, "it's [[USER]]Name", {"PLAIN -> Value Name: NAME"}},
  };
  for (const auto& testCase : kCases) {
    EXPECT_EQ(Scan(Line(testCase.key, testCase.valueName)), testCase.traces)
        << testCase.key << " / " << testCase.valueName;
  }
  EXPECT_THAT(LogText(), IsEmpty());
}

TEST_F(RegistryScanTest, KeyWithAForeignTokenKeepsTheKeyOfTheLineBefore) {
  Value("First", "a");
  Value("First", "b");
  EXPECT_THAT(Scan(Line(Key("First"), "a") + Line("Software\\[[USER]]", "b")),
              ElementsAre("FIRST -> Value Name: A", "FIRST -> Value Name: B"));
}

TEST_F(RegistryScanTest, UserTokenOfAnEntryIsTheUser) {
  Value(machine().UserName(), "v");
  RegistryScan::Entry entry{.company = " Company ",
                            .threatName = " Threat ",
                            .threatType = "Adware",
                            .hive = kRoot,
                            .key = Key("[[USER]]"),
                            .valueName = "v"};
  registryScan.LoadSpywareRegistryToBeDeleted(entry);
  ASSERT_EQ(resultsPage.lvwRegistryEntriesFound.Count(), 1U);
  const ListRow& row = resultsPage.lvwRegistryEntriesFound.At(0);
  const std::string key = Key(machine().UserName());
  EXPECT_EQ(row.text, "Company");
  EXPECT_EQ(row.subItems, (Strings{"Threat", "Adware", "-2147483647", key, "v",
                                   RegistryTraceText("HKEY_CURRENT_USER", key, "v")}));
}

TEST_F(RegistryScanTest, TraceIsShownUnderItsThreatWithThePrefixInItsKey) {
  Value("K", "v");
  Scan(Line(Key("K"), "v", ""));
  ASSERT_EQ(resultsPage.vbatvwResults.Count(), 2U);
  EXPECT_EQ(resultsPage.vbatvwResults.At(1)->text, "Unknown");
  EXPECT_TRUE(resultsPage.vbatvwResults.At(2)->key.starts_with("K1[[]][Found] - HKEY_CURRENT"));
  EXPECT_EQ(resultsPage.lblRegistryInfected.Caption(), "1");
  EXPECT_EQ(page.lblStatus.Caption(), ToLower(Key("K")) + "v");
}

TEST_F(RegistryScanTest, IgnoredTraceStaysInTheListAndMakesNoRoot) {
  Value("K", "v");
  resultsPage.lvwIgnoredSpywares.Add(
      {.text = RegistryTraceText("HKEY_CURRENT_USER", Key("K"), "v")});
  EXPECT_EQ(Scan(Line(Key("K"), "v")).size(), 1U);
  EXPECT_THAT(TreeLines(), IsEmpty());
  Value("K", "w");
  Scan(Line(Key("K"), "w") + Line(Key("K"), "v"));
  ASSERT_EQ(resultsPage.vbatvwResults.Count(), 3U);
  EXPECT_TRUE(resultsPage.vbatvwResults.At(3)->text.starts_with("[Ignored] - "));
}

TEST_F(RegistryScanTest, ShortLineEndsThePhase) {
  Value("K", "v");
  Install({.registry = Line(Key("K"), "v")});
  AppendToFile(files(), DataFolder(machine()) + "QNLRSig.dll", "\r\n");
  registryScan.ScanRegistry();
  EXPECT_EQ(resultsPage.lvwRegistryEntriesFound.Count(), 1U);
  EXPECT_THAT(LogText(), HasSubstr("ScanRegistry in frmMain \r\n"));
  EXPECT_THAT(unread.NotRun(),
              ElementsAre(HasSubstr("Registry: QNLRSig.dll, line 3: Subscript out of range")));
}

}  // namespace
}  // namespace quarnel
