#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/host.h"
#include "core/dir_drill.h"
#include "core/error_log.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "scan/results.h"
#include "scan/scan_page.h"

namespace quarnel {

// The last phase of a scan: file and folder signatures become paths, and each path that is the
// described threat becomes a trace.
class FileScan {
 public:
  struct Uses {
    ScanPage& page;
    const ScanFlags& flags;
    Results& results;
    Files& files;
    Machine& machine;
    Host& host;
    ErrorLog& log;
  };
  explicit FileScan(const Uses& uses) : u_(uses) {}

  void ScanSignatureFiles();

  // Whether the file is the threat: `result` becomes "True" or "False". It must exist; then a
  // shortcut needs no further proof, and any other file must have the company or the hash. Letter
  // case is folded throughout.
  void CheckValidFile(std::string_view path, std::string_view company, std::string_view hash,
                      std::string& result);

 private:
  // What the phase keeps from one candidate to the next.
  struct State {
    std::vector<std::string> currentSignatureFields;
    std::vector<std::string> fileSearchRows;
    TreeNodeRef root;
  };

  void ScanLine(std::string_view line, CDirDrill& dd, State& state);
  void ExpandLine(CDirDrill& dd, State& state);
  void TestCandidate(const std::string& row, State& state);
  void dd_NewFile(const std::string& path, State& state);
  bool HasCompanyOrHash(std::string_view path, std::string_view company, std::string_view hash);

  Uses u_;
};

}  // namespace quarnel
