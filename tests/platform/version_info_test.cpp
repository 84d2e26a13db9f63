#include "platform/version_info.h"

#include "platform/pe_writer.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

constexpr size_t kPiece = size_t{256} * 1024;

class VersionInfoTest : public PlatformTest {
 protected:
  std::string Company(std::string_view bytes, int* events = nullptr) {
    return GetCompanyName(files(), Make("file.exe", bytes), [&] {
      if (events) ++*events;
      return true;
    });
  }
};

std::string Widened(std::string_view text) { return NullPad(text) + std::string(2, '\0'); }

// A value as it stands in the resource: header, name, a word of padding, text.
std::string Node(std::string_view name, std::string_view text) {
  return std::string("\x40\0\x09\0\x01\0", 6) + Widened(name) + std::string(2, '\0') +
         Widened(text);
}
std::string Block(std::string_view company) {
  return Widened("StringFileInfo") + Node("CompanyName", company);
}

TEST_F(VersionInfoTest, ReadsTheRecordOfAProgram) {
  FixedVersionRecord record = ApplicationRecord(3, 1, 20, 400);
  record.flags = 0x01 | 0x20;
  for (const bool wide : {false, true}) {
    Make("a.exe", MakeProgram({record, "Examplesoft Labs", "A \xC3\xA4 sample", wide}));
    const auto info = GetFileVersionInfo(platform().versions(), Path("A.EXE"));
    ASSERT_TRUE(info) << wide;
    EXPECT_EQ(info->structureVersion, "1.0");
    EXPECT_EQ(info->fileVersion, "3.1.20.400");
    EXPECT_EQ(info->productVersion, "3.1.20.400");
    EXPECT_EQ(info->flags, " Debug Special");
    EXPECT_EQ(info->targetSystem, "NT-Win32");
    EXPECT_EQ(info->fileType, "App");
    EXPECT_EQ(info->fileSubtype, "");
    EXPECT_EQ(GetCompanyName(files(), Path("a.exe"), nullptr), "Examplesoft Labs");
    EXPECT_EQ(GetFileDescription(files(), Path("a.exe"), nullptr), "A \xC3\xA4 sample");
  }
}

TEST_F(VersionInfoTest, AnswersNothingWithoutARecord) {
  Make("text.exe", "this is no program");
  Make("torn.exe", MakeProgram({}).substr(0, 0x450));
  for (const std::string_view name : {"text.exe", "torn.exe", "missing.exe", ""}) {
    EXPECT_FALSE(GetFileVersionInfo(platform().versions(), Path(name))) << name;
    EXPECT_EQ(GetCompanyName(files(), Path(name), nullptr), "") << name;
  }
}

TEST(DescribeVersion, NamesSystemTypeAndSubtype) {
  const struct {
    uint32_t system, type, subtype;
    std::string_view systemName, typeName, subtypeName;
  } cases[] = {
      {0x20002, 3, 1, "OS/2-16 PM-16", "Driver", "Printer drv"},
      {0x30003, 3, 99, "OS/2-16 PM-32", "Driver", "Unknown"},
      {0x40004, 4, 3, "NT-Win32", "Font", "TrueType Font"},
      {0xFFFFFFFF, 6, 0, "Unknown", "Unknown", ""},
  };
  for (const auto& test : cases) {
    FixedVersionRecord record;
    record.operatingSystem = test.system;
    record.type = test.type;
    record.subtype = test.subtype;
    record.flags = 0xFFFFFFFF;
    const FileVersionInfo info = DescribeVersion(record);
    EXPECT_EQ(info.targetSystem, test.systemName);
    EXPECT_EQ(info.fileType, test.typeName);
    EXPECT_EQ(info.fileSubtype, test.subtypeName);
    EXPECT_EQ(info.flags, " Debug PreRel Patched Private Info Special");
  }
}

TEST(StringFileInfoText, TakesTheTextBehindTheName) {
  const std::string filler(300, 'x'), block = Widened("StringFileInfo");
  const std::string inCode = NullPad("\\StringFileInfo\\%04x\\") + Widened("CompanyName") + filler;
  const std::string node = Node("CompanyName", "Labs"), whole = block + node;
  const struct {
    const char* about;
    std::string bytes;
    std::string_view text = {};
  } cases[] = {
      {"whole", whole, "Labs"},
      {"at an odd place", "x" + whole, "Labs"},
      {"without padding", block + Widened("CompanyName") + Widened("Labs"), "Labs"},
      {"behind a path in code", inCode + whole, "Labs"},
      {"in the second block", block + filler + whole, "Labs"},
      {"torn in the text", whole.substr(0, 30 + 32 + 4), "La"},
      {"torn in the name", whole.substr(0, 30 + 20)},
      {"without a block", node},
      {"name before the block", node + block},
      {"part of a name", block + NullPad("CompanyName") + Widened("s") + Widened("Labs")},
      {"far behind the block", block + std::string(65536, 'x') + node},
      {"empty value", block + Node("CompanyName", "")},
      {"no value before the next node", block + std::string("\x20\0\0\0\x01\0", 6) +
                                            Widened("CompanyName") + std::string(2, '\0') +
                                            Node("FileDescription", "Text")},
      {"nothing", ""},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(StringFileInfoText(test.bytes, "CompanyName"), test.text) << test.about;
  }
}

TEST_F(VersionInfoTest, FindsTextAcrossTheBordersOfPieces) {
  const std::string block = Block("Examplesoft Labs");
  for (size_t before = 0; before <= block.size() + 2; ++before) {
    const std::string bytes = std::string(kPiece - before, 'x') + block + "x";
    EXPECT_EQ(Company(bytes), "Examplesoft Labs") << before;
  }
  // The name may stand up to 64 KB behind the block's beginning.
  const std::string apart = Widened("StringFileInfo") + std::string(60000, 'x');
  EXPECT_EQ(Company(std::string(kPiece - 30000, 'x') + apart + Node("CompanyName", "Labs")),
            "Labs");
}

TEST_F(VersionInfoTest, LetsEventsRunBetweenPieces) {
  int events = 0;
  EXPECT_EQ(Company(std::string(3 * kPiece, 'x') + Block("Labs"), &events), "Labs");
  EXPECT_EQ(events, 3);
  EXPECT_EQ(Company(Block("Labs"), &events), "Labs");
  EXPECT_EQ(events, 3);
}

TEST(StringFileInfoText, TakesLittleTimeWhateverTheBytesHold) {
  // Each of these made a search that begins anew at every match take hours.
  std::string names, blocks, both;
  while (names.size() < 8U << 20) names += Widened("CompanyName");
  while (blocks.size() < 8U << 20) blocks += Widened("StringFileInfo");
  while (both.size() < 8U << 20) both += NullPad("CompanyNamCompanyNamStringFileInf");
  for (const std::string& bytes : {names, blocks, both}) {
    EXPECT_EQ(StringFileInfoText(bytes, "CompanyName"), "");
  }
}

}  // namespace
}  // namespace quarnel
