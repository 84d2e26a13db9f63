#include "ui/console/commands.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace quarnel {
namespace {

constexpr std::array kCommands{
    Command{"forms", "[all]", command::Forms},
    Command{"load", "FORM", command::Load},
    Command{"controls", "[FORM]", command::Controls},
    Command{"get", "NAME [PROPERTY]", command::Get},
    Command{"set", "NAME VALUE", command::Set},
    Command{"click", "NAME [INDEX]", command::Click},
    Command{"press", "NAME [INDEX]", command::Press},
    Command{"rightclick", "NAME [INDEX]", command::RightClick},
    Command{"hover", "NAME [INDEX]", command::Hover},
    Command{"mouse", "X Y", command::Mouse},
    Command{"rows", "LIST", command::Rows,
            "row, checked, text, subitems...; where set: bold, colour=#RRGGBB, picture=N"},
    Command{"select", "LIST ROW", command::Select},
    Command{"check", "LIST ROW 0|1", command::Check},
    Command{"tree", "TREE", command::Tree,
            "index, depth, checked, key, text, columns...; where set: bold, colour=#RRGGBB, "
            "picture=N"},
    Command{"checknode", "TREE INDEX 0|1", command::CheckNode},
    Command{"clicknode", "TREE INDEX", command::ClickNode},
    Command{"answer", "yes|no|ok|cancel|text:...", command::Answer},
    Command{"messages", "", command::Messages},
    Command{"during", "NAME COUNT COMMAND", command::During},
    Command{"clock", "YYYY-MM-DDTHH:MM:SS[.FFF]", command::Clock},
    Command{"advance", "DURATION", command::Advance},
    Command{"wait", "DURATION", command::Wait},
    Command{"waitfor", "NAME VALUE [TIMEOUT]", command::WaitFor},
    Command{"scan", "", command::Scan},
    Command{"remove", "", command::Remove},
    Command{"report", "", command::Report},
    Command{"browser", "", command::Browser, "setting, now, baseline, default"},
    Command{"shields", "", command::Shields,
            "shield, chosen, watching, what it did since the start..."},
    Command{"startup", "[allow|block NAME|LOCATION\\NAME]", command::Startup,
            "location, name, path, verdict, present"},
    Command{"helpers", "", command::Helpers,
            "name, state, file, company, file version, product version, hive, key, value"},
    Command{"expect", "NAME VALUE", command::Expect},
    Command{"wizard", "", command::Wizard},
    Command{"quit", "", command::Quit},
    Command{"help", "", command::Help},
};

}  // namespace

std::span<const Command> Commands() { return kCommands; }

const Command* FindCommand(std::string_view name) {
  const auto* found = std::find_if(kCommands.begin(), kCommands.end(),
                                   [&](const Command& command) { return command.name == name; });
  return found == kCommands.end() ? nullptr : found;
}

void command::Help(Session& session, Words& words) {
  words.End();
  for (const Command& entry : Commands()) {
    std::vector<Field> fields = {{"command", std::string(entry.name)},
                                 {"arguments", std::string(entry.usage)}};
    if (!entry.prints.empty()) fields.push_back({"prints", std::string(entry.prints)});
    session.records.Write(fields);
  }
}

}  // namespace quarnel
