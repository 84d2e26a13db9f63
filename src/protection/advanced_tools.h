#pragma once

#include "protection/advanced_tools_page.h"

namespace quarnel {

// The page of the two managers at work: the tree says which of them shows.
class AdvancedTools {
 public:
  explicit AdvancedTools(AdvancedToolsPage& page);

  // Adds the nodes of the tree.
  void AddNodes();
  // The page was opened: shows the manager that was looked at last, the first one at first.
  void Open();

 private:
  void ShowManager(bool bho, bool startup);

  AdvancedToolsPage& page_;
};

}  // namespace quarnel
