#include "platform/shortcut.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "base/little_endian.h"

namespace quarnel {
namespace {

constexpr size_t kHeader = 0x4C;

// A link with a LinkInfo of the older form, which has no Unicode texts: `fields` are its words from
// the header's size on, and `data` stands behind them.
std::string OldLink(uint32_t linkFlags, std::initializer_list<uint32_t> fields,
                    std::string_view data, std::string_view itemList = {}) {
  std::string link = MakeShortcut("x").substr(0, kHeader);
  SetU32(link, 20, linkFlags);
  link += itemList;
  PutU32(link, static_cast<uint32_t>(4 + 4 * fields.size() + data.size()));
  for (const uint32_t field : fields) PutU32(link, field);
  return link += data;
}

TEST(Shortcut, ReadsWhatItWrote) {
  for (const std::string target :
       {"C:\\Program Files\\Sample\\a b.exe", "D:\\",
        "C:\\\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80.txt", "C:\\no utf \xFF.exe"}) {
    EXPECT_EQ(ReadShortcutTarget(MakeShortcut(target)), target);
  }
}

TEST(Shortcut, ReadsOldAndNetworkForms) {
  using std::string_view;
  const string_view local("C:\\Tools\0run.exe\0", 17);
  const string_view share("\x20\0\0\0\0\0\0\0\x14\0\0\0\0\0\0\0\0\0\0\0\\\\host\\disk\0\0run.exe\0",
                          40);
  const string_view items("\x04\0\x02\0\0\0", 6);
  const auto localFields = {0x1CU, 1U, 0U, 0x1CU, 0U, 0x25U};
  EXPECT_EQ(ReadShortcutTarget(OldLink(2, localFields, local)), "C:\\Toolsrun.exe");
  EXPECT_EQ(ReadShortcutTarget(OldLink(3, localFields, local, items)), "C:\\Toolsrun.exe");
  EXPECT_EQ(ReadShortcutTarget(OldLink(2, {0x1CU, 2U, 0U, 0U, 0x1CU, 0x3DU}, share)),
            "\\\\host\\disk\\run.exe");
  // A list of items that claims to reach behind the end hides what follows.
  EXPECT_FALSE(ReadShortcutTarget(OldLink(3, localFields, local, string_view("\xFF\xFF", 2))));
}

TEST(Shortcut, AnswersNothingWhereNoTargetIs) {
  const struct {
    const char* name;
    std::function<void(std::string&)> damage;
  } cases[] = {
      {"other header size", [](std::string& l) { l[0] = 0x4D; }},
      {"no link info", [](std::string& l) { SetU32(l, 20, 0x80); }},
      {"link info forbidden", [](std::string& l) { SetU32(l, 20, 0x182); }},
      {"path offset behind the end",
       [](std::string& l) {
         SetU32(l, kHeader + 16, 0xFFFFFFFF);
         SetU32(l, kHeader + 28, 0xFFFFFFFF);
       }},
      {"network block behind the end",
       [](std::string& l) {
         SetU32(l, kHeader + 8, 2);
         SetU32(l, kHeader + 20, 0xFFFFFFF0);
       }},
  };
  for (const auto& test : cases) {
    std::string link = MakeShortcut("C:\\a.exe");
    test.damage(link);
    EXPECT_FALSE(ReadShortcutTarget(link)) << test.name;
  }
}

TEST(Shortcut, SurvivesEveryTruncationAndEveryFlippedByte) {
  const std::string whole = MakeShortcut("C:\\Documents and Settings\\user\\a.exe");
  for (size_t size = 0; size <= whole.size(); ++size) {
    const bool hasAllButTheEndMark = size + 4 >= whole.size();
    EXPECT_EQ(ReadShortcutTarget(whole.substr(0, size)).has_value(), hasAllButTheEndMark) << size;
    for (const int flip : {0xFF, 0x01, 0x80}) {
      std::string link = whole;
      if (size < link.size()) link[size] = static_cast<char>(link[size] ^ flip);
      const auto other = ReadShortcutTarget(link);
      EXPECT_LE(other.value_or("").size(), 2 * whole.size());
    }
  }
}

}  // namespace
}  // namespace quarnel
