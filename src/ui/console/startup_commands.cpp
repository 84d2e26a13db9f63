#include <string>
#include <vector>

#include "base/text.h"
#include "platform/names.h"
#include "ui/console/command_error.h"
#include "ui/console/commands.h"
#include "ui/console/display_text.h"

// What starts with the system. The list alone allows, blocks and writes nothing.
namespace quarnel::command {
namespace {

using State = StartupShield::State;

std::string WordOf(State::Verdict verdict) {
  switch (verdict) {
    case State::Verdict::kAllowed:
      return "allowed";
    case State::Verdict::kBlocked:
      return "blocked";
    case State::Verdict::kNone:
      break;
  }
  return "none";
}

std::string FullName(const StartupEntry& entry) { return Join({entry.section, entry.name}, "\\"); }

// The one entry that goes by this name, alone or behind its location.
StartupEntry TakeEntry(const std::vector<State>& states, const std::string& name) {
  std::vector<const StartupEntry*> found;
  for (const State& state : states) {
    const StartupEntry& entry = state.entry;
    if (EqualNames(entry.name, name) || EqualNames(FullName(entry), name)) found.push_back(&entry);
  }
  if (found.empty()) throw CommandError{"nothing starts with the system as " + Quoted(name)};
  if (found.size() == 1) return *found.front();
  std::string problem = Quoted(name) + " is ambiguous:";
  for (const StartupEntry* entry : found) problem.append(" ").append(Quoted(FullName(*entry)));
  throw CommandError{problem};
}

}  // namespace

void Startup(Session& session, Words& words) {
  if (!words.More()) {
    for (const State& state : session.program.Startups()) {
      session.records.Write({{"location", state.entry.section},
                             {"name", state.entry.name},
                             {"path", state.entry.path},
                             {"verdict", WordOf(state.verdict)},
                             {"present", state.present}});
    }
    return;
  }
  const std::string& what = words.Next();
  const bool allow = what == "allow";
  if (!allow && what != "block") throw UsageError{};
  const std::string& name = words.Next();
  words.End();
  session.program.DecideStartup(TakeEntry(session.program.Startups(), name), allow);
}

}  // namespace quarnel::command
