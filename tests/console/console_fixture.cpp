#include "console/console_fixture.h"

#include "base/runtime_error.h"
#include "base/text.h"

namespace quarnel {
namespace {

class TestProgram : public ConsoleProgram {
 public:
  TestProgram(Host& host, ConsoleRun& run) : host_(host), run_(run), form_(host) {}

  bool Start() override {
    if (!run_.alone) return false;
    for (const MessageBox& box : run_.startBoxes) host_.MsgBox(box);
    form_.Show();
    form_.child->ShowModal();
    return true;
  }
  ScanSummary Scan() override {
    form_.Work();
    host_.MsgBox({.text = "All done", .title = "Test"});
    return run_.summary;
  }
  std::optional<RemovalReport> Remove(Removing what) override {
    run_.removing = what;
    if (run_.removal) form_.child->ShowModal();
    if (run_.removal) return run_.removal;
    const bool sure = host_.MsgBox({.text = "Sure?",
                                    .title = "Test",
                                    .icon = MessageIcon::kQuestion,
                                    .buttons = MessageButtons::kYesNo}) == Answer::kYes;
    form_.lblLog.SetCaption(sure ? "removed" : "kept");
    return std::nullopt;
  }
  std::optional<RemovalReport> LastRemoval() override { return run_.removal; }
  ScanSummary Report() override { return run_.summary; }
  std::vector<ShieldState> Shields() override {
    return {{.name = "memory", .chosen = true, .did = {{"alerts", 2}, {"declined", 1}}},
            {.name = "helpers", .chosen = true, .watching = true}};
  }
  bool RestoreFellShort() override { return run_.restoreFellShort; }
  std::vector<BrowserSettings::State> BrowserStates() override { return run_.browserStates; }
  std::vector<StartupShield::State> Startups() override { return run_.startups; }
  void DecideStartup(const StartupEntry& entry, bool allow) override {
    run_.decided += (allow ? "allow " : "block ") + entry.section + "\\" + entry.name + ";";
  }
  std::vector<std::string> FormNames() override { return {"frmTest", "frmChild"}; }
  bool LoadForm(std::string_view name) override {
    if (!EqualText(name, "frmChild")) return false;
    form_.child->Show();
    return true;
  }
  void Wizard() override { form_.child->ShowModal(); }
  bool Quit() override {
    return host_.MsgBox({.text = "Close?", .buttons = MessageButtons::kYesNo}) == Answer::kYes;
  }
  void End() override {
    run_.left = true;
    host_.EndProcess();
  }

 private:
  Host& host_;
  ConsoleRun& run_;
  frmTest form_;
};

}  // namespace

frmTest::frmTest(Host& host) : Form(host, "frmTest") {
  SetCaption("Test form");
  cmdOff.SetEnabled(false);
  cmdOff.Click = [this] { Log("off "); };
  imgTab0.Click = [this] { Log("tab0 "); };
  imgTab0.SetVisible(false);
  imgTab1.Click = [this] { Log("tab1 "); };
  imgTab1.MouseDown = [this] { Log("press1 "); };
  chkOn.Click = [this] { Log("on=" + chkOn.ValueText() + " "); };
  txtIn.Change = [this] { Log("in=" + txtIn.Text() + " "); };
  cmdTell.Click = [this] {
    this->host().MsgBox({.text = "Two\r\nlines", .title = "T", .icon = MessageIcon::kCritical});
  };
  cmdAsk.Click = [this] {
    const Answer answer = this->host().MsgBox({.text = "Stop?",
                                               .title = "T",
                                               .icon = MessageIcon::kQuestion,
                                               .buttons = MessageButtons::kYesNoCancel});
    Log(std::to_string(static_cast<int>(answer)) + " ");
  };
  cmdPrompt.Click = [this] {
    Log("<" + this->host().InputBox("Name?", "T", "nobody").value_or("none") + "> ");
  };
  cmdModal.Click = [this] {
    child->ShowModal();
    Log("closed ");
    if (chkOn.Checked()) this->host().MsgBox({.text = "After"});
  };
  cmdWait.Click = [this] {
    Log(this->host().WaitUntil([this] { return txtIn.Text() == "x"; }) ? "came " : "left ");
    this->host().DoEvents();
  };
  imgTab0.MouseMove = [this] { Log("over0 "); };
  icon.RightClick = [this] { Log("menu "); };
  cmdWork.Click = [this] { Work(); };
  cmdStop.Click = [this] { stop_ = true; };
  cmdRaise.Click = [] { throw RuntimeError(ErrorNumber::kFileNotFound, "x.dll"); };
  tmrTick.Tick = [this] { Log("tick "); };
  lvwRows.Add({.text = "one", .subItems = {"b1", "c1", "beyond"}, .checked = true});
  lvwRows.Add({.text = "two\t2"});
  lvwRows.SetLook(1, {.colour = Colour::kGreen, .bold = true, .picture = 4});
  lvwRows.ItemCheck = [this](size_t row) { Log("check" + std::to_string(row) + " "); };
  lvwRows.ItemClick = [this](size_t row) { Log("select" + std::to_string(row) + " "); };
  tvwTree.SetColumns({{.header = "Name"}, {.header = "Type"}});
  const TreeNodeRef root = tvwTree.AddRoot("root", "Root");
  tvwTree.SetColumn(*root, 1, "Adware");
  tvwTree.AddChild(root, "K1[[]]x", "[Found] - x");
  const TreeNodeRef bare = tvwTree.AddRoot("", "Bare");
  bare->hasCheckBox = false;
  tvwTree.SetColour(*bare, Colour::kRed);
  tvwTree.NodeCheck = [this](const TreeNodeRef& node) { Log("node=" + node->text + " "); };
  tvwTree.NodeClick = [this](const TreeNodeRef& node) { Log("at=" + node->text + " "); };
  sftItems.AddBelow(sftItems.Add("Root"), "x");
  sftItems.SetCell(0, 2, "Adware");
}

void frmTest::Work() {
  stop_ = false;
  for (int i = 1; i <= 100 && !stop_; ++i) {
    lblCount.SetCaption(std::to_string(i));
    pbgMain.SetValue(i);
    host().DoEvents();
  }
}

std::optional<std::string> FakeTerminal::ReadLine() {
  if (typed.empty()) return std::nullopt;
  std::string line = std::move(typed.front());
  typed.pop_front();
  return line;
}

void ConsoleRun::Run(const std::string& script) {
  std::istringstream in(script);
  std::ostringstream printed;
  std::ostringstream complaints;
  code = RunConsole(arguments, {in, printed, complaints, terminal},
                    [this](Host& host, const ProgramCall& call) {
                      job = call.job;
                      return std::make_unique<TestProgram>(host, *this);
                    });
  out = printed.str();
  err = complaints.str();
}

}  // namespace quarnel
