#include "ui/console/commands.h"

// What the guards know.
namespace quarnel::command {

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
