#include "core/ini_text.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

using Lines = std::vector<std::string>;

// Comments, odd spacing, lines that are no entries, foreign bytes and a section twice.
constexpr std::string_view kMixed =
    "; head \xFF\r\nstray=0\r\n[ One ]\r\n Key = \"a b\" \r\n;Key=c\r\nkey=2\r\njunk\r\n\r\n"
    "[two]\r\nq='x\r\ne=\r\n'=''\r\nurl=http://h/?a=b\r\n[ONE]\r\nother=3";

TEST(IniText, Reads) {
  const IniText ini{std::string(kMixed)};
  const struct {
    std::string section, key;
    std::optional<std::string> expected;
  } cases[] = {
      {"one", "KEY", "a b"},
      {" ONE ", " key\t", "a b"},
      {"one", "junk", {}},
      {"one", ";Key", {}},
      {"one", "other", {}},
      {"one", "stray", {}},
      {"", "stray", {}},
      {"two", "q", "'x"},
      {"Two", "e", ""},
      {"two", "'", ""},
      {"two", "url", "http://h/?a=b"},
      {"two", "url=http://h/?a", "b"},
  };
  for (const auto& c : cases) EXPECT_EQ(ini.Value(c.section, c.key), c.expected) << c.key;
  EXPECT_EQ(ini.SectionNames(), (Lines{"One", "two", "ONE"}));
  EXPECT_EQ(ini.Entries("one"), (Lines{"Key=\"a b\"", "key=2", "junk"}));
  EXPECT_EQ(ini.Entries("none"), Lines{});
}

TEST(IniText, EditsLeaveTheRestAlone) {
  const auto replaced = [](std::string_view find, std::string_view by) {
    std::string text(kMixed);
    return text.replace(text.find(find), find.size(), by);
  };
  const auto edited = [](auto edit) {
    IniText ini{std::string(kMixed)};
    edit(ini);
    return ini.Text();
  };
  EXPECT_EQ(edited([](IniText& i) { i.SetValue("one", "key", "n"); }),
            replaced(" \"a b\" \r\n", "n\r\n"));
  EXPECT_EQ(edited([](IniText& i) { i.SetValue("ONE", "new", "n"); }),
            replaced("junk\r\n", "junk\r\nnew=n\r\n"));
  EXPECT_EQ(edited([](IniText& i) { i.SetValue("three", "k", "v"); }),
            std::string(kMixed) + "\r\n[three]\r\nk=v\r\n");
  EXPECT_EQ(edited([](IniText& i) { i.DeleteKey("One", "key"); }),
            replaced(" Key = \"a b\" \r\n", ""));
  EXPECT_EQ(edited([](IniText& i) { i.DeleteKey("One", "none"); }), kMixed);
  EXPECT_EQ(edited([](IniText& i) { i.DeleteSection("none"); }), kMixed);
  EXPECT_EQ(edited([](IniText& i) {
              i.SetEntries("two", {"a=1", "", "b=2"});
            }),
            replaced("q='x\r\ne=\r\n'=''\r\nurl=http://h/?a=b\r\n", "a=1\r\nb=2\r\n"));
  EXPECT_EQ(edited([](IniText& i) {
              i.DeleteSection("one");
              i.DeleteSection("one");
              i.DeleteSection("two");
            }),
            "; head \xFF\r\nstray=0\r\n");
}

TEST(IniText, KeepsTheFilesForm) {
  IniText unix("[a]\nk=1\n\n\n[b]");
  unix.SetValue("a", "m", "2");
  unix.SetValue("b", "n", "3");
  EXPECT_EQ(unix.Text(), "[a]\nk=1\nm=2\n\n\n[b]\nn=3\n");
  IniText marked("\xEF\xBB\xBF[a]\r\nk=1");
  EXPECT_EQ(marked.Value("a", "k"), "1");
  EXPECT_TRUE(marked.SetValue("a", "k", "2"));
  EXPECT_EQ(marked.Text(), "\xEF\xBB\xBF[a]\r\nk=2");
  IniText empty;
  EXPECT_TRUE(empty.SetEntries("s", {"a=b"}));
  EXPECT_EQ(empty.Text(), "[s]\r\na=b\r\n");
}

// Names come from the registry of an infected machine: none may forge a line of its own, and each
// that is taken must be found again, or the file would grow with every write.
TEST(IniText, HostileNamesStayInTheirPlace) {
  using namespace std::string_literals;
  const std::string forged = "a\r\n[forged]\r\nDANGER", mark = "\xEF\xBB\xBF";
  const std::string names[] = {"",    "]",    "a]b", "x];",   forged, "a\0b"s, " a ", "=",
                               "a=b", "a= b", mark,  "\"q\"", "\t;x", "[sec",  "[s]"};
  for (const std::string& section : names) {
    for (const std::string& key : names) {
      IniText ini("[other]\r\nk=v\r\n");
      const bool taken = ini.SetValue(section, key, "one\r\ntwo\0"s);
      const std::string once = ini.Text();
      EXPECT_EQ(taken, !(key.starts_with('[') || key == "\t;x")) << key;
      ini.SetValue(section, key, "one\r\ntwo\0"s);
      EXPECT_EQ(ini.Text(), once) << section << "/" << key;
      if (!taken) continue;
      EXPECT_EQ(ini.Value(section, key), "one  two") << section << "/" << key;
      EXPECT_EQ(ini.SectionNames().size(), 2u);
      EXPECT_EQ(ini.Value("other", "k"), "v");
      ini.DeleteKey(section, key);
      EXPECT_EQ(ini.Entries(section), Lines{});
    }
  }
  IniText ini;
  EXPECT_FALSE(ini.SetEntries("s", {"a=b", " [x]"}));
  EXPECT_EQ(ini.Text(), "");
}

}  // namespace
}  // namespace quarnel
