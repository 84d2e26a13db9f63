// What a screen reader gets of the windows: all that a user at the keyboard comes to has a name,
// and all that rows show can be heard.

#include <algorithm>

#include "base/text.h"
#include "display/display_fixture.h"
#include "recovery/restore_point.h"

namespace quarnel {
namespace {

struct Spoken {
  int depth = 0;
  std::string role;
  std::string name;
  std::string states;
  std::string actions;
  std::string label;

  bool Is(std::string_view state) const { return states.find(state) != std::string::npos; }
};

class ReadAloudTest : public DisplayTest {
 protected:
  void SetUp() override {
    if (wxGetEnv("NO_AT_BRIDGE", nullptr)) GTEST_SKIP() << "no screen reader can listen here";
  }

  std::vector<Spoken> ReadAtRest() {
    Settle();
    return ReadNow();
  }
  // All that shows, in the order of reading.
  std::vector<Spoken> ReadNow() {
    wxArrayString lines;
    wxExecute(wxString::Format("%s %lu", QUARNEL_READ_ALOUD, wxGetProcessId()), lines,
              wxEXEC_SYNC | wxEXEC_NODISABLE);
    std::vector<Spoken> things;
    for (const wxString& line : lines) {
      const std::vector<std::string> part = Split(line.utf8_string(), "\t");
      if (part.size() != 6) continue;
      things.push_back({std::stoi(part[0]), part[1], part[2], part[3], part[4], part[5]});
    }
    EXPECT_FALSE(things.empty());
    ExpectSpoken(things);
    return things;
  }

  static void ExpectSpoken(const std::vector<Spoken>& things) {
    for (size_t i = 0; i < things.size(); ++i) {
      const Spoken& thing = things[i];
      SCOPED_TRACE(thing.role + " " + thing.name);
      EXPECT_EQ(thing.label, "") << "one of another thing";
      if (thing.role == "image" || thing.role == "icon" || thing.role == "panel") {
        EXPECT_EQ(thing.name.find('('), std::string::npos) << "an internal name";
      }
      const bool cell = thing.role == "table cell";
      if (thing.Is("focusable") && !cell) {
        EXPECT_NE(thing.name, "");
      }
      if (thing.role == "table" || thing.role == "tree table") ExpectRows(things, i);
    }
  }

  // The rows of a table, each as the texts of its cells; a tick is told by its state.
  static std::vector<std::vector<std::string>> RowsOf(const std::vector<Spoken>& things,
                                                      size_t table) {
    size_t columns = 0;
    std::vector<std::vector<std::string>> rows;
    const int depth = things[table].depth + 1;
    for (size_t i = table + 1; i < things.size() && things[i].depth >= depth; ++i) {
      const Spoken& thing = things[i];
      if (thing.role == "table column header") {
        ++columns;
      } else if (thing.role == "table cell" && thing.depth == depth) {
        if (rows.empty() || rows.back().size() == columns) rows.emplace_back();
        const bool tick = thing.actions.find("toggle") != std::string::npos;
        rows.back().push_back(tick ? (thing.Is("checked") ? "ticked" : "not ticked") : thing.name);
      } else if (!rows.empty()) {
        rows.back().back() += thing.name;  // a picture and a text share a cell
      }
    }
    return rows;
  }
  static void ExpectRows(const std::vector<Spoken>& things, size_t table) {
    const auto rows = RowsOf(things, table);
    for (const std::vector<std::string>& row : rows) {
      const bool ticks = row.front().find("ticked") != std::string::npos;
      EXPECT_EQ(ticks, rows.front().front().find("ticked") != std::string::npos);
      EXPECT_NE(row.at(ticks ? 1 : 0), "");
    }
  }
  static std::vector<std::vector<std::string>> Rows(const std::vector<Spoken>& things,
                                                    std::string_view table) {
    for (size_t i = 0; i < things.size(); ++i) {
      if (things[i].role.ends_with("table") && things[i].name == table) return RowsOf(things, i);
    }
    ADD_FAILURE() << "no table " << table;
    return {};
  }
  static bool Says(const std::vector<Spoken>& things, std::string_view text) {
    return std::any_of(things.begin(), things.end(), [&](const Spoken& thing) {
      return thing.name.find(text) != std::string::npos;
    });
  }
};

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST_F(ReadAloudTest, EachPageAndFormHasNames) {
  frmMain& main = Start();
  EXPECT_TRUE(Says(ReadAtRest(), "Needs attention:"));
  for (int tab = 1; tab <= 6; ++tab) {
    host->Act([&] { main.Find("imgMainTab(" + std::to_string(tab) + ")")->ClickByUser(); });
    ReadAtRest();
  }
  ForEachForm([&](Form& form) {
    if (&form != &main) ReadAtRest();
  });
}

TEST_F(ReadAloudTest, FindsAreReadTickedAndRemoved) {
  DeleteTree(files(), BackupFolder(machine()));
  settings.Save(setting::kStrict, 1);
  frmMain& main = Start();
  Scan();

  const std::string found = "[Found] - " + planted;
  const auto finds = [&] { return Rows(ReadAtRest(), "Threats and their traces"); };
  // The tree has the keyboard, with the first threat chosen.
  const auto rows = finds();
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(rows[0], ElementsAre("ticked", "Threat", "Adware", "3 "));
  EXPECT_THAT(rows[1], ElementsAre("ticked", found, "", ""));
  const auto window = [&]() -> wxWindow* { return WindowOf(main)->Window(); };
  robot.Press("space", window, WXK_SPACE, 0);
  Until("no tick", [&] { return !main.results.vbatvwResults.At(2)->checked; });
  Run();
  EXPECT_THAT(finds()[1], ElementsAre("not ticked", found, "", ""));
  robot.Press("space", window, WXK_SPACE, 0);
  Until("the tick", [&] { return main.results.vbatvwResults.At(2)->checked; });
  Run();
  EXPECT_THAT(finds()[0], ElementsAre("ticked", "Threat", "Adware", "3 "));

  Click("cmdRemoveSpywares");
  ClickIn("frmReBootMachine", "cmdClose");
  Until("the summary", [&] { return main.removal.picRemoveSummary.Visible(); });
  Run();
  EXPECT_THAT(
      Rows(ReadAtRest(), "What became of each trace"),
      ::testing::Contains(ElementsAre(HasSubstr("Planted.txt"), ::testing::Not(""), ::testing::_)));

  // A modal form and its questions are read while they wait for an answer.
  Click("cmdFinish");
  Click("cmdRestore");
  std::vector<Spoken> question;
  ClickIn("frmRestore", "cmdOK");
  constexpr int kTurnsAtRest = 12;
  robot.Then(
      "the question",
      [turns = 0]() mutable { return Robot::Shown("MessageBox") && ++turns > kTurnsAtRest; },
      [&] { question = ReadNow(); });
  robot.AnswerBox("Yes");
  robot.AnswerBox("OK");
  Run();
  EXPECT_TRUE(Says(question, "restore"));
  ASSERT_EQ(Rows(question, "Restore points").size(), 1U);
}

}  // namespace
}  // namespace quarnel
