#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/error_log.h"
#include "core/paths.h"
#include "scan/scan_context.h"
#include "support/platform_fixture.h"
#include "support/signature_set.h"
#include "support/test_host.h"

namespace quarnel {

// A machine with the pages of a scan on a bare form.
class ScanTest : public PlatformTest {
 protected:
  static constexpr int kLevel = 4;

  ScanTest() { page.ImgStopScanMouseMove.SetEnabled(true); }

  TestHost host;
  Form form{host, "frmMain"};
  ScanPage page{form};
  ResultsPage resultsPage{form};
  ScanFlags flags;
  Unread unread;
  ErrorLog log{files(), machine(), host, "Quarnel"};
  Results results{resultsPage, [](std::string_view) { return kLevel; }, host, log};

  ScanContext context{.page = page,
                      .resultsPage = resultsPage,
                      .flags = flags,
                      .unread = unread,
                      .results = results,
                      .files = files(),
                      .machine = machine(),
                      .host = host,
                      .log = log};

  std::string LogText() { return Exists(log.Path()) ? Read(log.Path()) : std::string(); }

  // Compiles sources and puts the files into the system folder.
  void Install(const SignatureSources& sources) {
    InstallSet(files(), machine(), CompileSet(sources));
  }

  // The tree as lines, each indented by its depth.
  std::vector<std::string> TreeLines() const {
    std::vector<std::string> lines;
    for (const TreeNodeRef& node : resultsPage.vbatvwResults.InOrder()) {
      lines.push_back((node->parent ? "  " : "") + node->text);
    }
    return lines;
  }

  static std::vector<std::string> Texts(const ListView& list) {
    std::vector<std::string> texts;
    for (const ListRow& row : list.Rows()) texts.push_back(row.text);
    return texts;
  }
};

}  // namespace quarnel
