#pragma once

#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/tree_view.h"

namespace quarnel {

// The managers of browser helper objects and of startup programs, of which the tree's selected node
// shows one.
struct AdvancedToolsPage {
  Form& form;
  TreeView tvwAdvancedTools{form, "tvwAdvancedTools"};

  ListView lvwBHOs{
      form,
      "lvwBHOs",
      {"Name", "File", "Company Name", "File Version", "Product Version", "Hive", "Key", "Value"}};
  // Its tag holds the window state that was in force before a minimise.
  Label lblAllowBHO{form, "lblAllowBHO", "Allow this BHO"};
  Label lblBlockBHO{form, "lblBlockBHO", "Block this BHO"};

  ListView lvwStartup{form, "lvwStartup", {"Application", "Path", "Section"}};
  // What the list is made of; never shown itself.
  TreeView vbatvwStartup{form, "vbatvwStartup"};
  Label lblAllowThisStartupItem{form, "lblAllowThisStartupItem", "Allow this Startup Program"};
  Label lblBlockThisStartupItem{form, "lblBlockThisStartupItem", "Block this Startup Program"};
};

}  // namespace quarnel
