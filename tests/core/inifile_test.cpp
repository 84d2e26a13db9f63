#include "core/inifile.h"

#include <gtest/gtest.h>

#include "core/ini_text.h"
#include "support/failing_files.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

class Inifile : public PlatformTest {
 protected:
  cInifile Ini(std::string_view section, std::string_view key = {}) {
    cInifile ini(failing);
    ini.SetPath(path);
    ini.SetSection(section);
    ini.SetKey(key);
    return ini;
  }
  std::string Content() { return Read(path); }

  FailingFiles failing{files()};
  std::string path = Path("state.ini");
};

TEST_F(Inifile, ReadsAndWrites) {
  cInifile ini = Ini("Level", "Some Threat");
  ini.SetDefault("none");
  EXPECT_EQ(ini.Value(), "none");
  EXPECT_FALSE(ini.Success());
  ini.DeleteKey();
  EXPECT_TRUE(ini.Success());
  EXPECT_FALSE(files().Stat(path)) << "there was nothing to write";
  using namespace std::string_literals;
  ini.SetValue("\0a\0b"s);
  EXPECT_TRUE(ini.Success());
  EXPECT_EQ(ini.Value(), "ab");
  EXPECT_EQ(Content(), "[Level]\r\nSome Threat=ab\r\n");
  ini.SetValue(std::string(300, 'x'));
  EXPECT_EQ(ini.Value(), std::string(254, 'x'));
  ini.SetKey("[no key]");
  ini.SetValue("x");
  EXPECT_FALSE(ini.Success());
  ini.DeleteSection();
  EXPECT_TRUE(ini.Success());
  EXPECT_EQ(Content(), "");
}

TEST_F(Inifile, Enumerates) {
  std::vector<std::string> names;
  long count = 7;
  Ini("none").EnumerateCurrentSection(names, count);
  EXPECT_EQ(count, 0);
  WriteWholeFile(files(), path,
                 "[]\nk=1\n[BHR]\nhttp://a/?x=1 = ALLOW\n; note\nhttp://b/=BLOCK\nlone\n[c]\n");
  using namespace std::string_literals;
  EXPECT_EQ(Ini("bhr").INISection(), "http://a/?x=1 = ALLOW\0http://b/=BLOCK\0lone\0"s);
  Ini("bhr").EnumerateCurrentSection(names, count);
  EXPECT_EQ(names, (Strings{"http://a/?x", "http://b/", "lone"}));
  EXPECT_EQ(count, 3);
  Ini("").EnumerateAllSections(names, count);
  EXPECT_EQ(names, (Strings{"", "BHR", "c"}));
  EXPECT_EQ(count, 3);

  cInifile ini = Ini("bhr");
  ini.SetINISection("a=1\0b=2"s);
  EXPECT_TRUE(ini.Success());
  EXPECT_EQ(Content(), "[]\nk=1\n[BHR]\na=1\nb=2\n[c]\n");
}

TEST_F(Inifile, BuffersCutWhatDoesNotFit) {
  std::string text = "[s]\n";
  for (int i = 1000; i < 2000; ++i) text += "key" + std::to_string(i) + "=1\n";  // 10 bytes each
  WriteWholeFile(files(), path, text);
  EXPECT_EQ(Ini("s").INISection().size(), 8190u);
  std::vector<std::string> keys;
  long count = 0;
  Ini("s").EnumerateCurrentSection(keys, count);
  EXPECT_EQ(count, 819);
  EXPECT_EQ(keys.back(), "key1818");
}

// A write that breaks off at any step leaves the old file, and nothing beside it.
TEST_F(Inifile, WritesAreWhole) {
  const std::string old = "; mine \xFF\r\n[s]\r\nk=old\r\n";
  for (int step = 1;; ++step) {
    WriteWholeFile(files(), path, old);
    failing.failAt = step;
    failing.steps = 0;
    cInifile ini = Ini("s", "k");
    ini.SetValue("new");
    EXPECT_EQ(files().List(Scratch()).size(), 1u);
    if (ini.Success()) {
      EXPECT_EQ(step, 6);  // open, write, open and flush, and replace have failed in their turns
      break;
    }
    EXPECT_EQ(Content(), old) << step;
  }
  EXPECT_EQ(Content(), "; mine \xFF\r\n[s]\r\nk=new\r\n");
  failing.steps = 0;
  cInifile ini = Ini("s", "k");
  ini.SetValue("new");
  EXPECT_TRUE(ini.Success());
  EXPECT_EQ(failing.steps, 0) << "an unchanged value is not written";
}

TEST_F(Inifile, LeavesAloneWhatItCannotRead) {
  files().CreateFolder(path);
  cInifile ini = Ini("s", "k");
  ini.SetDefault("none");
  ini.SetValue("x");
  EXPECT_FALSE(ini.Success());
  EXPECT_EQ(ini.Value(), "none");
  files().DeleteFolder(path);
  WriteWholeFile(files(), path, "[s]\n");
  files().SetAttributes(path, file_attribute::kReadOnly);
  ini.SetValue("x");
  EXPECT_FALSE(ini.Success());
  EXPECT_EQ(Content(), "[s]\n");
  files().SetAttributes(path, file_attribute::kNormal);
  ini.SetPath(Path("no folder\\x.ini"));
  ini.SetValue("x");
  EXPECT_FALSE(ini.Success());
}

TEST_F(Inifile, KeepsThePlaceOfAForm) {
  TestHost host;
  Form form(host, "frmMain");
  const ScreenArea screen{0, 0, 15000, 12000};
  form.SetPlace({100, 200, 3000, 2000});
  Ini("").LoadFormPosition(form, screen);
  EXPECT_EQ(form.Place(), (ScreenArea{100, 200, 3000, 2000})) << "nothing is stored";
  form.SetWindowState(WindowState::kMaximised);
  cInifile ini = Ini("other");
  ini.SaveFormPosition(form);
  EXPECT_TRUE(ini.Success());
  EXPECT_EQ(Content(),
            "[frmMain]\r\nLeft=100\r\nTop=200\r\nWidth=3000\r\nHeight=2000\r\nMaximised=1\r\n");
  Form again(host, "frmMain");
  ini.LoadFormPosition(again, screen);
  EXPECT_EQ(again.Place(), form.Place());
  EXPECT_EQ(again.StateOfWindow(), WindowState::kMaximised);

  const struct {
    std::string stored;
    ScreenArea place;
  } cases[] = {
      {"Left=2147483647\nTop=-2147483648", {12000, 0, 3000, 2000}},
      {"Width=99999\nLeft=10", {0, 200, 99999, 2000}},
      {"Width=-5\nHeight=2147483647", {100, 200, 3000, 2000}},
      {"Left=FAIL\nTop=x\nWidth=99999999999", {100, 200, 3000, 2000}},
      {"Left=7.5\nMaximised=0", {8, 200, 3000, 2000}},
  };
  for (const auto& c : cases) {
    WriteWholeFile(files(), path, "[frmMain]\n" + c.stored);
    form.SetPlace({100, 200, 3000, 2000});
    ini.LoadFormPosition(form, screen);
    EXPECT_EQ(form.Place(), c.place) << c.stored;
  }
  EXPECT_EQ(form.StateOfWindow(), WindowState::kNormal);
}

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
