#include <string>
#include <vector>

#include "controls/list_view.h"
#include "protection/helper_objects.h"
#include "ui/console/command_error.h"
#include "ui/console/commands.h"

// What the guards are about. Nothing here allows, blocks or writes anything.
namespace quarnel::command {
namespace {

std::string_view WordOf(int state) {
  switch (state) {
    case helper_state::kBlocked:
      return "blocked";
    case helper_state::kAllowed:
      return "allowed";
    case helper_state::kUndecided:
      return "undecided";
    default:
      return "unknown";
  }
}

}  // namespace

void Shields(Session& session, Words& words) {
  words.End();
  for (const ShieldState& shield : session.program.Shields()) {
    std::vector<Field> fields = {{"shield", std::string(shield.name)},
                                 {"chosen", shield.chosen},
                                 {"watching", shield.watching}};
    std::vector<std::string> did;
    for (const auto& [what, number] : shield.did) {
      if (session.records.IsJson()) fields.push_back({what, Number(number)});
      did.push_back(std::string(what) + "=" + std::to_string(number));
    }
    if (!session.records.IsJson()) fields.push_back({"did", std::move(did)});
    session.records.Write(fields);
  }
}

void Helpers(Session& session, Words& words) {
  words.End();
  const auto target = FindTarget(session.host, "lvwBHOs");
  const auto* list = target ? dynamic_cast<const ListView*>(target->control) : nullptr;
  if (list == nullptr) throw CommandError{"the program has no list of helper objects"};
  constexpr std::string_view kNames[] = {"file", "company", "fileVersion", "productVersion",
                                         "hive", "key",     "value"};
  for (const ListRow& row : list->Rows()) {
    std::vector<Field> fields = {{"name", row.text},
                                 {"state", std::string(WordOf(row.look.picture))}};
    for (size_t i = 0; i < std::size(kNames); ++i) {
      fields.push_back({kNames[i], std::string(row.SubItem(i + 1))});
    }
    session.records.Write(fields);
  }
}

void Browser(Session& session, Words& words) {
  words.End();
  for (const BrowserSettings::State& state : session.program.BrowserStates()) {
    session.records.Write({{"setting", state.name},
                           {"now", state.now},
                           {"baseline", state.baseline},
                           {"default", state.original}});
  }
}

}  // namespace quarnel::command
