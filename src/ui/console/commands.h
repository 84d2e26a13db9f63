#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "platform/terminal.h"
#include "ui/console/console_host.h"
#include "ui/console/console_program.h"
#include "ui/console/records.h"
#include "ui/console/words.h"

namespace quarnel {

// What a command works on and where it prints.
struct Session {
  ConsoleHost& host;
  ConsoleProgram& program;
  Terminal& terminal;
  RecordWriter& records;
};

// One command of scripts and of the prompt. `run` gets the words behind the command's own; it takes
// all of them before it does anything, so that a wrong call changes nothing. It throws CommandError
// or UsageError, and what it clicks may raise RuntimeError.
struct Command {
  std::string_view name;
  std::string_view usage;  // the arguments
  void (*run)(Session& session, Words& words);
  std::string_view prints = {};  // the fields of its records, where the names leave a doubt
};

// All commands, in the order in which `help` shows them.
std::span<const Command> Commands();

// The command of this name; nothing when there is none.
const Command* FindCommand(std::string_view name);

// The commands themselves, by what they are about.
namespace command {

void Forms(Session& session, Words& words);
void Load(Session& session, Words& words);
void Controls(Session& session, Words& words);
void Get(Session& session, Words& words);
void Set(Session& session, Words& words);
void Click(Session& session, Words& words);
void Press(Session& session, Words& words);
void RightClick(Session& session, Words& words);
void Hover(Session& session, Words& words);
void Mouse(Session& session, Words& words);
void Expect(Session& session, Words& words);

void Rows(Session& session, Words& words);
void Select(Session& session, Words& words);
void Check(Session& session, Words& words);
void Tree(Session& session, Words& words);
void CheckNode(Session& session, Words& words);
void ClickNode(Session& session, Words& words);

void Answer(Session& session, Words& words);
void Messages(Session& session, Words& words);
void During(Session& session, Words& words);
void Clock(Session& session, Words& words);
void Advance(Session& session, Words& words);
void Wait(Session& session, Words& words);
void WaitFor(Session& session, Words& words);

void Scan(Session& session, Words& words);
void Remove(Session& session, Words& words);
void Report(Session& session, Words& words);
void Browser(Session& session, Words& words);
void Shields(Session& session, Words& words);
void Helpers(Session& session, Words& words);
void Startup(Session& session, Words& words);
void Wizard(Session& session, Words& words);
void Quit(Session& session, Words& words);
void Help(Session& session, Words& words);

// True when the control takes the user's actions; otherwise says on the error stream that nothing
// was done.
bool TakesActions(Session& session, const Target& target);

// Runs a scan and prints what was found.
ScanSummary RunScan(Session& session);
// Removes and prints what became of it; nothing when there was nothing to remove.
std::optional<RemovalReport> RunRemoval(Session& session, Removing what);
// Prints what the last scan found and what the last removal did. False when that cannot be read.
bool RunReport(Session& session);

}  // namespace command

}  // namespace quarnel
