#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/console_fixture.h"

namespace quarnel {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct ScriptCase {
  const char* name;
  std::string script;
  std::string out;
  std::string err = {};
  int code = 0;
};

void PrintTo(const ScriptCase& scriptCase, std::ostream* out) { *out << scriptCase.name; }

class ScriptTest : public testing::TestWithParam<ScriptCase> {};

TEST_P(ScriptTest, PrintsAndEndsAsItShould) {
  ConsoleRun run;
  run.Run(GetParam().script);
  EXPECT_EQ(run.out, GetParam().out);
  EXPECT_EQ(run.err, GetParam().err);
  EXPECT_EQ(run.code, GetParam().code);
}

std::string NameOf(const testing::TestParamInfo<ScriptCase>& info) { return info.param.name; }

const std::string kClock = "clock 2024-03-05T14:30:00\n";

INSTANTIATE_TEST_SUITE_P(
    Controls, ScriptTest,
    testing::Values(
        ScriptCase{"Empty", "", ""},
        ScriptCase{"Comments", "\xEF\xBB\xBF# one\n\n  # two\r\nget lblShared # three\r\n",
                   "ours\n"},
        ScriptCase{"Forms", "forms", "frmTest\t1\tTest form\n"},
        ScriptCase{"FormsThatCanBeLoaded", "forms all\nload FRMCHILD\nget lblChild\nforms",
                   "frmTest\nfrmChild\nchild\nfrmTest\t1\tTest form\nfrmChild\t1\t\n"},
        ScriptCase{"LoadUnknownForm", "load frmNone", "", "1: no form \"frmNone\"\n", 1},
        ScriptCase{"MouseOverAndRightClick",
                   "hover imgTab 0\nhover lblCount\nrightclick icon\nmouse 20 30\nget lblLog",
                   "over0 menu \n"},
        ScriptCase{"ControlsOfForm", "click cmdModal\ncontrols frmchild",
                   "frmChild.lblChild\tLabel\t1\t1\tchild\n"
                   "frmChild.lblShared\tLabel\t1\t1\ttheirs\n"
                   "frmChild.lblcount\tLabel\t1\t1\tlower\n"
                   "frmChild.cmdClose\tButton\t1\t1\t\nfrmChild.cmdDeeper\tButton\t1\t1\t\n"},
        ScriptCase{"Guards", "shields\nshields 1",
                   "memory\t1\t0\talerts=2\tdeclined=1\nhelpers\t1\t1\n", "2: usage: shields\n", 1},
        ScriptCase{"NoHelperObjects", "helpers", "",
                   "1: the program has no list of helper objects\n", 1},
        ScriptCase{"GetEscapes", "get lblOdd", "a\\tb\\\\c\\r\\nd\n"},
        ScriptCase{"GetProperties",
                   "get tmrTick interval\nget imgTab(0) Visible\nget frmTest windowstate\n"
                   "get frmTest\nget pbgMain max\nget imgTab 1 enabled",
                   "1000\n0\n0\nTest form\n100\n1\n"},
        ScriptCase{"GetUnknownProperty", "\nget lblLog colour", "",
                   "2: frmTest.lblLog has no property \"colour\"\n", 1},
        ScriptCase{"UnknownName", "get lblNone", "", "1: unknown name: \"lblNone\"\n", 1},
        ScriptCase{"AmbiguousName", "click cmdModal\nget frmChild.lblShared\nget lblShared",
                   "theirs\n", "3: ambiguous name: \"lblShared\" is on frmTest and frmChild\n", 1},
        ScriptCase{"LetterCaseDecides", "click cmdModal\nget lblcount\nget lblCount\nget LBLCOUNT",
                   "lower\n0\n", "4: ambiguous name: \"LBLCOUNT\" is on frmTest and frmChild\n", 1},
        ScriptCase{"SetFiresEvents",
                   "set txtIn \"a \\\"b\\\" c:\\\\d \\n\"\nset chkOn true\nset chkOn 0\nget lblLog",
                   "in=a \"b\" c:\\\\d \\\\n on=1 on=0 \n"},
        ScriptCase{"SetWrongFlag", "set chkOn 5", "", "1: no flag: \"5\" (0, 1, true, false)\n", 1},
        ScriptCase{"SetOnLabel", "set lblLog x", "",
                   "1: Invalid procedure call or argument: lblLog takes no value\n", 1},
        ScriptCase{"ClickArraysAndHidden",
                   "click imgTab 0\nclick imgTab(1)\npress IMGTAB 1\nget lblLog",
                   "tab0 tab1 press1 \n"},
        ScriptCase{"ClickDisabled", "click cmdOff\nget lblLog", "\n",
                   "1: frmTest.cmdOff is disabled: nothing done\n"},
        ScriptCase{"ClickRaises", "click cmdRaise", "", "1: File not found: x.dll\n", 1},
        ScriptCase{"ExpectHolds", "expect lblCount 0\nexpect frmTest \"Test form\"", ""},
        ScriptCase{"ExpectFails", "expect lblCount 1\nforms", "",
                   "1: frmTest.lblCount is \"0\", not \"1\"\n", 1},
        ScriptCase{"Usage", "rows", "", "1: usage: rows LIST\n", 1}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    ListsAndTrees, ScriptTest,
    testing::Values(
        ScriptCase{"Rows", "rows lvwRows",
                   "1\t1\tone\tb1\tc1\n2\t0\ttwo\\t2\t\t\tbold\tcolour=#00C000\tpicture=4\n"},
        ScriptCase{"SelectAndCheck",
                   "select lvwRows 2\ncheck lvwRows 2 1\nrows lvwRows\nget lblLog",
                   "1\t1\tone\tb1\tc1\n2\t1\ttwo\\t2\t\t\tbold\tcolour=#00C000\tpicture=4\nselect1 "
                   "check1 \n"},
        ScriptCase{"RowOutside", "select lvwRows 3", "",
                   "1: frmTest.lvwRows has 2, none numbered \"3\"\n", 1},
        ScriptCase{"Tree", "tree tvwTree",
                   "1\t0\t0\troot\tRoot\tAdware\n2\t1\t0\tK1[[]]x\t[Found] - x\t\n"
                   "3\t0\t0\t\tBare\t\tcolour=#FF0000\n"},
        ScriptCase{"Items", "tree sftItems", "1\t0\t0\t\tRoot\t\tAdware\n2\t1\t0\t\tx\n"},
        ScriptCase{"Nodes",
                   "checknode tvwTree 2 1\nclicknode tvwTree 1\nchecknode tvwTree 3 1\n"
                   "get lblLog\ntree tvwTree",
                   "node=[Found] - x at=Root \n1\t0\t0\troot\tRoot\tAdware\n"
                   "2\t1\t1\tK1[[]]x\t[Found] - x\t\n3\t0\t0\t\tBare\t\tcolour=#FF0000\n",
                   "3: node \"Bare\" has no check box: nothing done\n"}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Boxes, ScriptTest,
    testing::Values(
        ScriptCase{"Answered",
                   "answer YES cancel\nclick cmdAsk\nclick cmdAsk\nget lblLog\nmessages\n"
                   "messages",
                   "6 2 \nT\tquestion\tyesnocancel\tyes\tStop?\n"
                   "T\tquestion\tyesnocancel\tcancel\tStop?\n"},
        ScriptCase{"OkBoxNeedsAnAnswerToo", "answer ok\nclick cmdTell\nclick cmdTell", "",
                   "3: message box without an answer: Two\\r\\nlines\n", 1},
        ScriptCase{"NoSuchButton", "answer no\nclick cmdTell", "",
                   "2: the box has no button for the answer \"no\": Two\\r\\nlines\n", 1},
        ScriptCase{"Prompts",
                   "answer \"text:Jo Bloggs\" cancel\nclick cmdPrompt\nclick cmdPrompt\n"
                   "get lblLog\nmessages",
                   "<Jo Bloggs> <none> \nT\tnone\tinput\ttext:Jo Bloggs\tName?\n"
                   "T\tnone\tinput\tcancel\tName?\n"},
        ScriptCase{"WrongAnswer", "answer yes maybe\nclick cmdAsk", "",
                   "1: no answer: \"maybe\" (yes, no, ok, cancel, text:...)\n", 1},
        ScriptCase{"JobAnswersItself", "answer yes\nscan\nremove\nget lblLog\nmessages",
                   "No threats found.\nremoved\nTest\tnone\tok\tok\tAll done\n"
                   "Test\tquestion\tyesno\tyes\tSure?\n"},
        ScriptCase{"QuitDeclined", "answer no yes\nquit\nget lblCount\nquit\nget lblCount", "0\n"}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    ModalForms, ScriptTest,
    testing::Values(
        ScriptCase{"TakesCommandsUntilClosed",
                   "click cmdModal\nget lblChild\nclick cmdClose\nget lblLog\nget lblChild",
                   "child\nclosed \n", "5: unknown name: \"lblChild\"\n", 1},
        ScriptCase{"EndOfInputCloses", "click cmdModal\nget lblLog", "\n"},
        ScriptCase{"WaitingHandlerTakesCommands",
                   kClock + "click cmdWait\nset txtIn y\nadvance 1s\nset txtIn x\nget lblLog",
                   "in=y tick in=x came \n"},
        ScriptCase{"EndOfInputEndsAWait", "during lblLog 1 get lblLog\nclick cmdWait", "left \n"},
        ScriptCase{"LineOfTheOpener", "set chkOn 1\nclick cmdModal\nclick cmdClose\nforms", "",
                   "2: message box without an answer: After\n", 1},
        ScriptCase{"OpenedInsideEvents",
                   "during lblCount 3 click cmdModal\nclick cmdWork\nget lblCount\n"
                   "click cmdClose\nget lblCount",
                   "3\n100\n"},
        ScriptCase{"BoxInsideEvents",
                   "answer no\nduring lblCount 2 click cmdAsk\nclick cmdWork\nget lblLog\n",
                   "7 \n"},
        ScriptCase{"BoxOnTopOfABoxTakesTheNextAnswer",
                   "answer cancel yes\nduring lblCount 0 click cmdAsk\nclick cmdAsk\nget lblLog",
                   "6 2 \n"},
        ScriptCase{"WatchEndsWithItsForm",
                   "click cmdModal\nduring lblChild 0 get lblChild\nclick cmdClose\nwizard\n"
                   "click cmdClose\nwizard\nclick cmdWork",
                   ""},
        ScriptCase{"BoxInsideEventsUnanswered", "during lblCount 2 click cmdAsk\nclick cmdWork", "",
                   "1: message box without an answer: Stop?\n", 1}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Time, ScriptTest,
    testing::Values(
        ScriptCase{"DuringStops",
                   "during lblCount 7 click cmdStop\nclick cmdWork\nget lblCount\n"
                   "click cmdWork\nget lblCount",
                   "7\n100\n"},
        ScriptCase{"DuringQuoted",
                   "during lblCount 1 \"set txtIn \\\"x y\\\"\"\nclick cmdWork\n"
                   "get txtIn",
                   "x y\n"},
        ScriptCase{"DuringNested",
                   "during lblCount 5 during lblCount 5 click cmdStop\nclick cmdWork\nget lblCount",
                   "10\n"},
        ScriptCase{"DuringRunsWork",
                   "during lblCount 5 click cmdWork\nduring lblCount 8 get lblCount\nclick cmdWork",
                   "3\n"},
        ScriptCase{"DuringFails", "\nduring lblCount 2 expect lblCount 9\nclick cmdWork", "",
                   "2: frmTest.lblCount is \"2\", not \"9\"\n", 1},
        ScriptCase{"Advance", kClock + "advance 2500ms\nget lblLog\nadvance 500ms\nget lblLog",
                   "tick tick \ntick tick tick \n"},
        ScriptCase{"WaitOnVirtualClock",
                   kClock + "wait 1m\nclock 2025-01-01T00:00:00\nwait 999ms\n"
                            "set txtIn x\nwait 1ms\nget lblLog",
                   []() {
                     std::string text;
                     for (int i = 0; i < 60; ++i) text += "tick ";
                     return text + "in=x tick \n";
                   }()},
        ScriptCase{"AdvanceOnRealClock", "advance 1s", "",
                   "1: the clock is the real one: it takes the command clock, or wait\n", 1},
        ScriptCase{"WaitReal", "wait 5ms\nget lblLog", "\n"},
        ScriptCase{"WaitFor", kClock + "waitfor lblLog \"tick tick \"\nget lblLog", "tick tick \n"},
        ScriptCase{"WaitForFails", kClock + "waitfor lblLog x 1500ms", "",
                   "2: frmTest.lblLog is \"tick \", not \"x\", after 1500ms\n", 1},
        ScriptCase{
            "Fractions", "clock 2024-03-05T14:30:00.5\nclock 2024-03-05T14:30:00.1234", "",
            "2: no date and time: \"2024-03-05T14:30:00.1234\" (YYYY-MM-DDTHH:MM:SS[.FFF])\n", 1},
        ScriptCase{"WrongDay", "clock 2023-02-29T00:00:00", "",
                   "1: no date and time: \"2023-02-29T00:00:00\" (YYYY-MM-DDTHH:MM:SS[.FFF])\n", 1},
        ScriptCase{"WrongDuration", "wait 999999999h", "",
                   "1: no duration: \"999999999h\" (500ms, 10s, 2m, 2h)\n", 1}),
    NameOf);

TEST(HostileScript, EndsWithOneShortLine) {
  struct Case {
    std::string script;
    std::string err;
  };
  std::string manyWatches;
  for (int i = 0; i < 5000; ++i) manyWatches += "during lblCount 0 click cmdWork\n";
  std::string manyForms = "click cmdModal\n";
  for (int i = 0; i < 5000; ++i) manyForms += "click cmdDeeper\n";
  const Case cases[] = {
      {"get \"lblLog", "1: a quote does not end\n"},
      {"get \"lblLog\"x", "1: a blank is missing behind a quoted word\n"},
      {std::string("get\0x y", 7), "1: unknown command: \"get\\x00x\"\n"},
      {"\x1b[2J", "1: unknown command: \"\\x1B[2J\"\n"},
      {"\xff\xfe", "1: unknown command: \"\uFFFD\uFFFD\"\n"},
      {std::string(3'000'000, 'x'), "1: the line is longer than 1048576 bytes\n"},
      {std::string(900'000, 'x'), "1: unknown command: \"" + std::string(100, 'x') + "...\"\n"},
      {"get " + std::string(400'000, '('),
       "1: unknown name: \"" + std::string(100, '(') + "...\"\n"},
      {"during lblCount 99999999999999999999 forms", "1: no count: \"99999999999999999999\"\n"},
      {"click imgTab 99999999999999999999", "1: unknown name: \"imgTab\"\n"},
      {manyWatches + "click cmdWork", "64: commands are nested too deeply\n"},
      {manyForms, "65: commands are nested too deeply\n"},
  };
  for (const Case& hostile : cases) {
    ConsoleRun run;
    run.Run(hostile.script);
    EXPECT_EQ(run.err, hostile.err);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.code, 1);
  }
}

TEST(Console, RecordsAsJson) {
  ConsoleRun run;
  run.arguments = {"--json", "-"};
  run.startBoxes = {{.text = "Hi", .title = "T"}};
  run.browserStates = {{"Home Page", "http://now/", "http://was/", "http://default/"}};
  run.Run("get lblOdd\nrows lvwRows\ntree sftItems\nmessages\nforms\nbrowser");
  EXPECT_EQ(
      run.out,
      "{\"value\":\"a\\tb\\\\c\\r\\nd\"}\n"
      "{\"row\":1,\"checked\":true,\"text\":\"one\",\"subitems\":[\"b1\",\"c1\"]}\n"
      "{\"row\":2,\"checked\":false,\"text\":\"two\\t2\",\"subitems\":[\"\",\"\"],"
      "\"look\":[\"bold\",\"colour=#00C000\",\"picture=4\"]}\n"
      "{\"index\":1,\"depth\":0,\"checked\":false,\"key\":\"\",\"text\":\"Root\","
      "\"columns\":[\"\",\"Adware\"]}\n"
      "{\"index\":2,\"depth\":1,\"checked\":false,\"key\":\"\",\"text\":\"x\",\"columns\":[]}\n"
      "{\"title\":\"T\",\"icon\":\"none\",\"buttons\":\"ok\",\"answer\":\"ok\",\"text\":"
      "\"Hi\"}\n"
      "{\"name\":\"frmTest\",\"visible\":true,\"caption\":\"Test form\"}\n"
      "{\"setting\":\"Home Page\",\"now\":\"http://now/\",\"baseline\":\"http://was/\","
      "\"default\":\"http://default/\"}\n");
}

TEST(Console, StartupEntriesAreNamedAloneOrWithTheirLocation) {
  ConsoleRun run;
  using State = StartupShield::State;
  run.startups = {{{"One", "C:\\a.exe", "Run"}, State::Verdict::kAllowed},
                  {{"Two", "C:\\b.exe", "Run"}},
                  {{"Two", "C:\\b.exe", "RunOnce"}, State::Verdict::kBlocked, false}};
  run.Run("startup\nstartup allow one\nstartup block \"runonce\\\\TWO\"");
  EXPECT_EQ(run.out,
            "Run\tOne\tC:\\\\a.exe\tallowed\t1\nRun\tTwo\tC:\\\\b.exe\tnone\t1\n"
            "RunOnce\tTwo\tC:\\\\b.exe\tblocked\t0\n");
  EXPECT_EQ(run.decided, "allow Run\\One;block RunOnce\\Two;");
  for (const char* refused : {"startup block Two", "startup allow Three", "startup keep One",
                              "startup allow", "startup allow One Two"}) {
    ConsoleRun other;
    other.startups = run.startups;
    other.Run(refused);
    EXPECT_EQ(other.code, 1) << refused;
    EXPECT_EQ(other.decided, "") << refused;
  }
}

TEST(Console, LeavesTheProgramAtTheEndOfInput) {
  ConsoleRun run;
  run.Run("get lblCount");
  EXPECT_TRUE(run.left);
  EXPECT_EQ(run.code, 0);
  // A restore on the way that did not bring all back is an error, however the script goes on.
  for (const char* script : {"get lblCount", "answer yes\nquit"}) {
    ConsoleRun shorted{.restoreFellShort = true};
    shorted.Run(script);
    EXPECT_EQ(shorted.code, 1) << script;
  }
}

TEST(Console, QuestionWhileTheProgramStartsIsAnError) {
  ConsoleRun run;
  run.startBoxes = {{.text = "Go on?", .buttons = MessageButtons::kYesNo}};
  run.Run("answer yes");
  EXPECT_EQ(run.err, "message box without an answer: Go on?\n");
  EXPECT_EQ(run.code, 1);
}

TEST(Console, JobsOnTheCommandLine) {
  const ScanThreat threat{.name = "Evil", .type = "Worm", .level = "5", .traces = {"C:\\x"}};
  const ScanThreat ignored{.name = "Mild", .ignored = {"C:\\y"}};
  struct Case {
    std::string job;
    ScanSummary summary;
    int code;
    std::string out;
  };
  const Case cases[] = {
      {"scan", {}, 0, "No threats found.\n"},
      {"scan", {.threats = {threat}}, 2, "1 threat with 1 trace found."},
      {"scan", {.threats = {ignored}}, 0, "No threats found, 1 trace ignored.\n"},
      {"scan", {.problem = "no signatures"}, 1, "No threats found.\n"},
      {"report", {.threats = {threat}}, 0, "1 threat with 1 trace found."},
      {"report", {.scanned = false}, 0, "No scan is on record.\n"},
      {"report", {.problem = "unreadable"}, 1, ""},
      {"remove", {}, 0, "No threats found.\n"},
      {"remove", {.threats = {threat}}, 1, "1 threat with 1 trace found."},
  };
  for (const Case& job : cases) {
    ConsoleRun run;
    run.arguments = {job.job};
    run.summary = job.summary;
    run.Run("");
    EXPECT_EQ(run.code, job.code) << job.job;
    EXPECT_TRUE(run.job);
    EXPECT_THAT(run.out, HasSubstr(job.out));
    EXPECT_EQ(run.out.find('\r'), std::string::npos);
  }
}

TEST(Console, BadCallsGiveOneLine) {
  const std::vector<std::vector<std::string>> calls = {
      {"--jsn"}, {"--machine"}, {"--machine", ""}, {"scan", "remove"}, {"/"}, {"scna"}, {"a\nb"}};
  for (const auto& call : calls) {
    ConsoleRun run;
    run.arguments = call;
    run.Run("forms");
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("quarnel-console: "));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  }
  ConsoleRun second;
  second.alone = false;
  second.Run("forms");
  EXPECT_EQ(second.code, 1);
  EXPECT_EQ(second.err, "quarnel-console: another instance is running\n");
}

TEST(Prompt, GoesOnAfterErrorsAndAsksForAnswers) {
  ConsoleRun run;
  run.arguments = {};
  run.terminal.inputIsTerminal = true;
  run.terminal.typed = {"get lblNone",     "click cmdAsk", "what",           "N",
                        "click cmdPrompt", "Jo",           "click cmdModal", "click cmdClose",
                        "get lblLog",      "click cmdAsk"};
  run.Run("");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.out, "7 <Jo> closed \n");
  EXPECT_EQ(run.err,
            "> unknown name: \"lblNone\"\n"
            "> -- T (question) --\nStop?\nyes/no/cancel> yes/no/cancel> "
            "> -- T --\nName?\n(nobody)> "
            "> frmChild> > > -- T (question) --\nStop?\nyes/no/cancel> > \n");
}

TEST(Prompt, JobTellsWhatItAnswersItself) {
  ConsoleRun run;
  run.arguments = {"scan"};
  run.Run("");
  EXPECT_EQ(run.err, "Test: All done\n");
}

}  // namespace
}  // namespace quarnel
