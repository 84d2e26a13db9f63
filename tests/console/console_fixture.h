#pragma once

#include <deque>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "controls/form.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"
#include "controls/tray_icon.h"
#include "controls/tree_view.h"
#include "ui/console/run_console.h"

// A small program of two forms behind the console, and a run of it through memory.
namespace quarnel {

class frmChild : public Form {
 public:
  explicit frmChild(Host& host) : Form(host, "frmChild") {
    cmdClose.Click = [this] { Close(UnloadMode::kCode); };
    cmdDeeper.Click = [this] { this->host().RunModal(*this); };
  }
  Label lblChild{*this, "lblChild", "child"};
  Label lblShared{*this, "lblShared", "theirs"};
  Label lblcount{*this, "lblcount", "lower"};
  Button cmdClose{*this, "cmdClose"};
  Button cmdDeeper{*this, "cmdDeeper"};
};

class frmTest : public Form {
 public:
  explicit frmTest(Host& host);

  Label lblShared{*this, "lblShared", "ours"};
  Label lblLog{*this, "lblLog"};
  Label lblCount{*this, "lblCount", "0"};
  Label lblOdd{*this, "lblOdd", "a\tb\\c\r\nd"};
  Button cmdTell{*this, "cmdTell"};
  Button cmdAsk{*this, "cmdAsk"};
  Button cmdPrompt{*this, "cmdPrompt"};
  Button cmdModal{*this, "cmdModal"};
  Button cmdWait{*this, "cmdWait"};
  Button cmdWork{*this, "cmdWork"};
  Button cmdStop{*this, "cmdStop"};
  Button cmdRaise{*this, "cmdRaise"};
  Button cmdOff{*this, "cmdOff"};
  Image imgTab0{*this, "imgTab(0)"};
  Image imgTab1{*this, "imgTab(1)"};
  CheckBox chkOn{*this, "chkOn"};
  TrayIcon icon{*this, "icon"};
  TextBox txtIn{*this, "txtIn"};
  ListView lvwRows{*this, "lvwRows", {"A", "B", "C"}};
  TreeView tvwTree{*this, "tvwTree"};
  ItemTree sftItems{*this, "sftItems"};
  ProgressBar pbgMain{*this, "pbgMain"};
  Timer tmrTick{*this, "tmrTick", Milliseconds(1000), true};
  FormSlot<frmChild> child{[this] { return std::make_unique<frmChild>(host()); }};

  // A long job: a hundred steps with events processed at each.
  void Work();

 private:
  void Log(std::string_view text) { lblLog.SetCaption(lblLog.Caption() + std::string(text)); }
  bool stop_ = false;
};

class FakeTerminal : public Terminal {
 public:
  bool inputIsTerminal = false;
  bool outputIsTerminal = false;
  bool colours = false;
  std::deque<std::string> typed;

  bool InputIsTerminal() override { return inputIsTerminal; }
  bool OutputIsTerminal() override { return outputIsTerminal; }
  bool ShowsColours() override { return colours; }
  size_t Width() override { return 60; }
  std::optional<std::string> ReadLine() override;
};

// One run of the console.
struct ConsoleRun {
  std::vector<std::string> arguments{"-"};
  FakeTerminal terminal;
  bool alone = true;  // no other instance answers
  std::vector<MessageBox> startBoxes;
  ScanSummary summary;
  // What a removal does, with a form that it opens on the way; nothing: it asks instead.
  std::optional<RemovalReport> removal;

  std::vector<BrowserSettings::State> browserStates;
  std::vector<StartupShield::State> startups;
  std::string decided;  // about them
  bool restoreFellShort = false;
  std::optional<Removing> removing;  // what the last removal was to take

  bool job = false;  // the program was made for one job

  int code = -1;
  std::string out;
  std::string err;
  bool left = false;  // the program was left without questions

  void Run(const std::string& script);
};

}  // namespace quarnel
