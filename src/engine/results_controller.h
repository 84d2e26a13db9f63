#pragma once

#include <string_view>

#include "core/main_window.h"
#include "core/services.h"
#include "scan/results.h"
#include "scan/safe_list.h"
#include "scan/unread.h"

namespace quarnel {

// What the buttons of the results page do beside removing: ticks, details, copies, the safe list.
class ResultsController {
 public:
  ResultsController(const Services& services, ResultsPage& page, Results& results,
                    MainWindow& window);

  // Fills the list of exempt traces from its file.
  void LoadSafeList();
  // For a scan, which asks the list: tries once more what could not be read at the start, and notes
  // when it still cannot.
  void RequireSafeList(Unread& unread);
  void ReloadSafeList();
  // The columns of the tree of results.
  void BuildColumns();

 private:
  void WireTree();
  void cmdViewSpywareDetail_Click();
  void Command1_Click();
  void ImgAddToIgnoredListNormal_Click();

  Services s_;
  ResultsPage& page_;
  Results& results_;
  MainWindow& window_;
  SafeList safeList_;
  bool hasSafeList_ = true;  // as far as was tried
};

}  // namespace quarnel
