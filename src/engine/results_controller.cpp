#include "engine/results_controller.h"

#include <string>

#include "core/existing_files.h"
#include "core/messages.h"
#include "core/open_in_browser.h"
#include "core/own_files.h"
#include "core/paths.h"
#include "core/product.h"
#include "platform/shell.h"

namespace quarnel {

ResultsController::ResultsController(const Services& services, ResultsPage& page, Results& results,
                                     MainWindow& window)
    : s_(services),
      page_(page),
      results_(results),
      window_(window),
      safeList_(s_.platform.files(), s_.platform.machine(), s_.log) {
  WireTree();
  page_.cmdViewResults.Click = [this] {
    page_.facts.leftPane = page_.facts.rightPane = true;
    Show(page_);
  };
  page_.cmdViewSpywareDetail.Click = [this] { cmdViewSpywareDetail_Click(); };
  page_.Command1.Click = [this] { Command1_Click(); };
  page_.ImgAddToIgnoredListNormal.Click = [this] { ImgAddToIgnoredListNormal_Click(); };
  // The second button opens the same list: the one of programs has no way to it.
  for (Button* safeList : {&page_.cmdIgnoredSpyware, &page_.cmdIgnoredProcesses}) {
    safeList->Click = [this] { window_.ShowSafeList(); };
  }
}

void ResultsController::WireTree() {
  page_.vbatvwResults.NodeCheck = [this](const TreeNodeRef& node) {
    results_.vbatvwResults_nodeCheck(node);
  };
  page_.vbatvwResults.NodeClick = [this](const TreeNodeRef& node) {
    results_.vbatvwResults_nodeClick(node);
  };
  page_.chkSelectAllDetectedSpywares.Click = [this] {
    results_.chkSelectAllDetectedSpywares_Click();
  };
  page_.cmdCheckUncheckAll.Click = [this] { results_.cmdCheckUncheckAll_Click(); };
}

void ResultsController::LoadSafeList() {
  page_.lvwIgnoredSpywares.Clear();
  hasSafeList_ = safeList_.AddIgnoredSpywaresTolvw(SafeListPath(s_.platform.machine()), "", "", "",
                                                   false, page_.lvwIgnoredSpywares);
}

void ResultsController::RequireSafeList(Unread& unread) {
  if (!hasSafeList_) LoadSafeList();
  if (!hasSafeList_) unread.Add("file", SafeListPath(s_.platform.machine()));
}

void ResultsController::ReloadSafeList() {
  Files& files = s_.platform.files();
  Machine& machine = s_.platform.machine();
  if (FileExists(files, OwnFileToRead(files, machine, SafeListPath(machine)))) LoadSafeList();
}

void ResultsController::BuildColumns() {
  page_.vbatvwResults.SetColumns({{.header = "Threat Name"},
                                  {.header = "Threat Type"},
                                  {.header = "NOOOO", .visible = false}});
}

void ResultsController::cmdViewSpywareDetail_Click() {
  Reporting(s_.log, "cmdViewSpywareDetail_Click in frmMain", [&] {
    const ListView& threats = page_.lvwPicRemoveListOfSpywareFoundAndToBeRemoved;
    if (threats.Empty())
      return Messages(s_.host, s_.settings)
          .Inform("There is no Spyware/Adware in the results list.");
    const auto row = threats.SelectedRow();
    if (!row) return;
    OpenInBrowser(s_.platform.shell(), s_.platform.machine(), s_.platform.files(), s_.host,
                  std::string(kMakerPages) + "productlist.php?id=" + threats.At(*row).tag, "htm",
                  s_.settings.ApplicationName());
  });
}

void ResultsController::Command1_Click() {
  Reporting(s_.log, "Command1_Click in frmMain", [&] {
    s_.host.SetClipboardText(results_.ResultsText());
    Messages(s_.host, s_.settings).Tell("Copied to Clipboard");
  });
}

void ResultsController::ImgAddToIgnoredListNormal_Click() {
  const bool moved = safeList_.AddTickedTraces(SafeListPath(s_.platform.machine()), page_);
  Messages(s_.host, s_.settings)
      .Inform(moved
                  ? "Added selected spyware successfully to [Ignored Spyware] List."
                  : "Select the item from the [Spyware Results] list to move to [Ignored Spyware] "
                    "list.");
}

}  // namespace quarnel
