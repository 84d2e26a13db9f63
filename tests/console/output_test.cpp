#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "console/console_fixture.h"
#include "support/test_host.h"
#include "ui/console/display_text.h"
#include "ui/console/progress_line.h"
#include "ui/console/records.h"
#include "ui/console/scan_summary.h"

namespace quarnel {
namespace {

TEST(JsonText, IsValidForAnyBytes) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "\"\""},
      {"a\"b\\c/", "\"a\\\"b\\\\c/\""},
      {std::string("\0\x01\x1f\x7f\b", 5), "\"\\u0000\\u0001\\u001f\x7f\\u0008\""},
      {"é漢😀", "\"é漢😀\""},
      {"\xff"
       "a\xc3",
       "\"\uFFFD"
       "a\uFFFD\""},
      {"\xed\xa0\x80", "\"\uFFFD\""},    // a lone surrogate
      {"\xc0\xaf", "\"\uFFFD\uFFFD\""},  // an overlong slash
  };
  for (const auto& [text, json] : cases) EXPECT_EQ(JsonText(text), json);
}

TEST(DisplayText, WidthAndCut) {
  struct Case {
    std::string text;
    size_t width;
    std::string firstThree;
  };
  const Case cases[] = {
      {"abcd", 4, "abc"}, {"é漢字", 5, "é漢"}, {"e\u0301xyz", 4, "e\u0301xy"},  {"a😀b", 4, "a😀"},
      {"漢字", 4, "漢"},  {"한Ａか", 6, "한"}, {"\xff\xff", 2, "\uFFFD\uFFFD"}, {"", 0, ""},
  };
  for (const Case& text : cases) {
    EXPECT_EQ(DisplayWidth(text.text), text.width) << text.text;
    EXPECT_EQ(FitToWidth(text.text, 3), text.firstThree);
  }
  EXPECT_EQ(Printable("a\x1b[0m\u202E\u0085\t\xfe"), "a\\x1B[0m\\u202E\\x85\\x09\uFFFD");
}

ScanSummary Sample() {
  return {.status = "Scanning completed.",
          .threats = {{.name = "漢字.Ware",
                       .type = "Adware",
                       .level = "3",
                       .traces = {"C:\\a\x1b.exe", "HKEY_CURRENT_USER\\x"}},
                      {.name = "Bo", .type = "Key Logger", .level = "10", .ignored = {"C:\\b"}}},
          .unread = {"file C:\\locked"},
          .unreadCount = 3};
}

TEST(ScanSummary, TableIsAlignedByWidth) {
  std::ostringstream out;
  PrintSummary(Sample(), out, false);
  EXPECT_EQ(out.str(),
            "Threat     Type        Level  Traces\n"
            "漢字.Ware  Adware      3           2\n"
            "    C:\\a\\x1B.exe\n"
            "    HKEY_CURRENT_USER\\x\n"
            "Bo         Key Logger  10          0\n"
            "    C:\\b (ignored)\n"
            "\n"
            "not read: file C:\\locked\n"
            "not read: 2 further items\n"
            "1 threat with 2 traces found, 1 trace ignored. Scanning completed.\n");
}

// What was not scanned is told first, and is not called clean.
TEST(ScanSummary, AScanThatWasNotWholeIsNotCalledClean) {
  std::ostringstream out;
  PrintSummary({.status = "Scanning completed. Not all was scanned.",
                .notRun = {"Registry: QNLRSig.dll is missing"},
                .notSaved = {"ScanHistory.ini: Disk full"},
                .whole = false},
               out, false);
  EXPECT_EQ(out.str(),
            "not run: Registry: QNLRSig.dll is missing\n"
            "not saved: ScanHistory.ini: Disk full\n"
            "Nothing found, and not all was scanned. Scanning completed. Not all was scanned.\n");
}

TEST(ScanSummary, Json) {
  std::ostringstream out;
  RecordWriter records(out, RecordWriter::Format::kJson);
  ScanSummary summary = Sample();
  summary.threats.erase(summary.threats.begin());
  WriteSummary(summary, records);
  EXPECT_EQ(out.str(),
            "{\"threat\":\"Bo\",\"type\":\"Key Logger\",\"level\":\"10\",\"traces\":[],"
            "\"ignored\":[\"C:\\\\b\"]}\n"
            "{\"unread\":\"file C:\\\\locked\"}\n"
            "{\"threats\":0,\"traces\":0,\"ignored\":1,\"notread\":3,\"whole\":true,"
            "\"status\":\"Scanning completed.\"}\n");
}

TEST(ScanSummary, CountsEveryTraceWhateverTheTreeShows) {
  TestHost host;
  Form form(host, "frm");
  ResultsPage page{form};
  const TreeNodeRef root = page.vbatvwResults.AddRoot("Evil", "Evil");
  page.vbatvwResults.SetColumn(*root, 1, "Worm");
  page.vbatvwResults.AddRoot("Removed", "Removed");
  const std::vector<FoundTrace> traces = {
      {.text = "C:\\bare", .threat = "Bare", .typeName = "Adware"},
      {.text = "C:\\[Found] - x", .threat = "evil"},
      {.text = "y", .threat = "Evil", .exempt = true}};
  const std::vector<ScanThreat> threats =
      ThreatsOf(page, traces, [](std::string_view name) { return name == "Bare" ? 7 : 3; });
  ASSERT_EQ(threats.size(), 2U);
  EXPECT_EQ(threats[0].name, "Evil");
  EXPECT_EQ(threats[0].type, "Worm");
  EXPECT_EQ(threats[0].traces, std::vector<std::string>{"C:\\[Found] - x"});
  EXPECT_EQ(threats[0].ignored, std::vector<std::string>{"y"});
  EXPECT_EQ(threats[1].level, "7");
  EXPECT_EQ(threats[1].type, "Adware");
}

TEST(ProgressLine, RedrawsOnChangeAtMostThirtyTimesASecond) {
  TestHost host;
  Form form(host, "frm");
  ProgressBar bar(form, "pbgMain");
  Label percentage(form, "lblPercentageCompleted", "Scanning - 0% Completed.   ");
  FakeTerminal terminal;
  std::ostringstream out;
  const auto drawn = [&] {
    std::string text = out.str();
    out.str("");
    return text;
  };
  {
    ProgressLine line(out, terminal, host.clock(), {&bar, &percentage, nullptr});
    const auto after = [&](Milliseconds time) {
      host.virtualClock().Pass(time);
      line.Update();
      return drawn();
    };
    EXPECT_EQ(after(Milliseconds(0)), "\r[..............] Scanning - 0% Completed.  ");
    bar.SetValue(50);
    EXPECT_EQ(after(Milliseconds(0)), "");  // too early
    EXPECT_EQ(after(Milliseconds(40)), "\r[#######.......] Scanning - 0% Completed.  ");
    EXPECT_EQ(after(Milliseconds(40)), "");  // nothing changed
    percentage.SetCaption(std::string(200, 'x') + "\n");
    EXPECT_EQ(after(Milliseconds(0)), "\r[#######.......] " + std::string(42, 'x'));
    percentage.SetCaption("done");
    EXPECT_EQ(after(Milliseconds(40)), "\r[#######.......] done  " + std::string(36, ' '));
  }
  EXPECT_EQ(drawn(), "\r" + std::string(23, ' ') + "\r");
}

TEST(ProgressLine, IsDrawnByAScanOnATerminalAndWiped) {
  ConsoleRun run;
  run.arguments = {"scan"};
  run.terminal.outputIsTerminal = true;
  run.Run("");
  EXPECT_THAT(run.out, testing::StartsWith("\r["));
  EXPECT_THAT(run.out, testing::EndsWith(" \rNo threats found.\n"));
}

TEST(RemovalOutput, TellsEachFateAndEndsByWhatIsLeft) {
  ConsoleRun run{.arguments = {"remove"}};
  run.summary.threats = {{.name = "T", .traces = {"C:\\a"}}};
  run.removal = RemovalReport{.time = "2008-06-14 10:25:16"};
  run.removal->backup = BackupReport{.stem = "1_2", .folder = "C:\\B"};
  run.removal->traces = {{TraceKind::kFile, "C:\\a", "T", Fate::kRemoved, ""},
                         {TraceKind::kFile, "C:\\b", "T", Fate::kKept, std::string(kOnSafeList)}};
  run.Run("");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.removing, Removing::kAllFound);
  EXPECT_THAT(run.out,
              ::testing::HasSubstr("kept         C:\\b\n               on the safe list\n"));
  EXPECT_THAT(run.out, ::testing::EndsWith("Restore point: C:\\B\\1_2\n"
                                           "Removal of 2008-06-14 10:25:16: 1 removed, 1 kept "
                                           "(1 on the safe list), 0 failed.\n"));

  ConsoleRun left{.arguments = {"--json", "remove"}, .summary = run.summary};
  left.removal = run.removal;
  left.removal->traces[0].fate = Fate::kFailed;
  left.Run("");
  EXPECT_EQ(left.code, 2);
  EXPECT_THAT(left.out,
              ::testing::HasSubstr("\"kind\":\"file\",\"threat\":\"T\",\"fate\":\"failed\""));
  EXPECT_THAT(left.out,
              ::testing::HasSubstr("\"backup\":\"complete\",\"restorepoint\":\"C:\\\\B\\\\1_2\""));

  // Whatever was found and is still there counts, also what no tick has reached.
  left.removal->traces[0] = {TraceKind::kFile, "C:\\a", "T", Fate::kKept, "not ticked"};
  left.Run("");
  EXPECT_EQ(left.code, 2);

  // A scan that was not whole does not hold back what it found.
  ConsoleRun partly{.arguments = {"remove"}, .summary = run.summary, .removal = run.removal};
  partly.summary.problem = "signature files are missing";
  partly.Run("");
  EXPECT_EQ(partly.code, 1);
  EXPECT_THAT(partly.out, ::testing::HasSubstr("1 removed"));

  // All traces are gone, and not all of them can be brought back.
  ConsoleRun lossy{.arguments = {"remove"}, .summary = run.summary, .removal = run.removal};
  lossy.removal->backup->failures = {{"C:\\a", "it cannot be read"}};
  lossy.Run("");
  EXPECT_EQ(lossy.code, 2);
  EXPECT_THAT(lossy.out, ::testing::HasSubstr("not saved: C:\\a: it cannot be read\n\nremoved "));

  ConsoleRun broken{.arguments = {"remove"}, .summary = run.summary};
  broken.removal = RemovalReport{.problem = "Disk full"};
  broken.Run("");
  EXPECT_EQ(broken.code, 1);
  EXPECT_THAT(broken.err, ::testing::HasSubstr("Disk full"));
}

}  // namespace
}  // namespace quarnel
