#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/dir_drill.h"
#include "scan/folder_index.h"
#include "scan/scan_context.h"
#include "signatures/signature_files.h"

namespace quarnel {

// The last phase of a scan: file and folder signatures become paths, and each path that is the
// described threat becomes a trace.
class FileScan {
 public:
  explicit FileScan(const ScanContext& context) : u_(context) {}

  void ScanSignatureFiles();

  // Whether the file is the threat: `result` becomes "True" or "False". It must exist; then a
  // shortcut needs no further proof, and any other file must have the company or the hash. Letter
  // case is folded throughout.
  void CheckValidFile(std::string_view path, std::string_view company, std::string_view hash,
                      std::string& result);

 private:
  // What the phase keeps from one line and one candidate to the next.
  struct Phase {
    explicit Phase(Files& files) : index(files), dd(files) {}
    FolderIndex index;
    CDirDrill dd;
    std::optional<SignatureFields> currentSignatureFields;
    std::vector<std::string> fileSearchRows;  // the paths that the line describes
    TreeNodeRef root;
    std::string user;
    std::array<std::optional<std::string>, 44> folders;  // by code
  };
  // A path with the fields of its line.
  struct Candidate {
    std::string_view path, company, threatName, typeName, hash, spywareId;
  };

  void ScanLine(std::string_view line, Phase& phase);
  void ShowProgress();
  void ExpandLine(Phase& phase);
  const std::string& FolderOf(std::string_view code, Phase& phase);
  void dd_NewFile(std::string path, Phase& phase);
  void TestRow(const std::string& path, Phase& phase);
  void TestCandidate(const Candidate& candidate, Phase& phase);
  bool IsThreat(std::string_view path, std::string_view company, std::string_view hash);

  ScanContext u_;
};

}  // namespace quarnel
