#include "scan/file_scan.h"

#include "base/text.h"
#include "core/paths.h"
#include "platform/version_info.h"
#include "scan/folders.h"
#include "scan/progress.h"
#include "signatures/md5.h"
#include "signatures/signature_files.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

constexpr std::string_view kFolderToken = "[[FOLDER]]";

// The fields of a line in QNLFSig.dll.
enum SignatureField { kCompany, kThreatName, kTypeCode, kFolderCode, kPath, kHashCode, kSpywareId };

// The fields of a candidate.
enum CandidateField { kFullPath, kItsCompany, kItsThreat, kItsType, kItsHash, kItsId };

// A field of a split line; a line that has too few raises the error which ends the phase.
const std::string& Field(const std::vector<std::string>& fields, size_t index) {
  if (index >= fields.size()) throw RuntimeError(ErrorNumber::kSubscriptOutOfRange);
  return fields[index];
}

}  // namespace

void FileScan::ScanSignatureFiles() {
  Reporting(u_.log, "ScanSignatureFiles in frmMain", [&] {
    if (!SignaturePresent(u_.files, u_.machine, signature_file::kFiles)) return;
    CDirDrill dd(u_.files);
    State state;
    dd.NewFile = [&](bool&, const std::string& path) { dd_NewFile(path, state); };
    SignatureLines lines(u_.files, u_.machine, signature_file::kFiles);
    while (const auto line = lines.Next()) {
      ScanLine(*line, dd, state);
      if (u_.flags.scanStopRequested) return;
      u_.host.DoEvents();
    }
  });
}

void FileScan::ScanLine(std::string_view line, CDirDrill& dd, State& state) {
  const int inspected = CountUp(u_.page.lblFilesFolderInspected);
  if (inspected <= u_.page.pbgMain.Max()) u_.page.pbgMain.SetValue(inspected);
  u_.page.lblPercentageCompleted.SetCaption(
      PercentCaption("Scanning Signature Files/Folder", u_.page.pbgMain));
  if (u_.flags.scanStopRequested) return;
  state.currentSignatureFields = Split(line, ",");
  state.fileSearchRows.clear();
  ExpandLine(dd, state);
  if (u_.flags.scanStopRequested) return;
  // The rows are taken out: what a handler starts meanwhile must not change them.
  for (const std::string& row : std::exchange(state.fileSearchRows, {})) {
    TestCandidate(row, state);
    if (u_.flags.scanStopRequested) return;
    u_.host.DoEvents();
  }
}

void FileScan::ExpandLine(CDirDrill& dd, State& state) {
  const auto& fields = state.currentSignatureFields;
  for (const std::string& folder :
       GetFolder(u_.machine, ToInteger(std::string_view(Field(fields, kFolderCode))))) {
    std::string path =
        Replace(folder + Field(fields, kPath), kUserToken, GetCurrentUser(u_.machine));
    if (path.find(kFolderToken) == std::string::npos) {
      dd_NewFile(path, state);
      continue;
    }
    dd.SetFolder(Replace(path, kFolderToken, ""));
    dd.SetPattern("*.*");
    if (!dd.Folder().empty()) dd.BeginSearch();
  }
}

// A candidate is one text with commas between its fields, so a comma in its path shifts them and
// the test of the path's first part fails quietly.
void FileScan::dd_NewFile(const std::string& path, State& state) {
  const auto& fields = state.currentSignatureFields;
  state.fileSearchRows.push_back(Join({path, Field(fields, kCompany), Field(fields, kThreatName),
                                       std::string(GetTypeOfSpyWare(Field(fields, kTypeCode))),
                                       Field(fields, kHashCode), Field(fields, kSpywareId)},
                                      ","));
}

void FileScan::TestCandidate(const std::string& row, State& state) {
  u_.results.RecomputeCounters();
  state.currentSignatureFields = Split(row, ",");
  const auto& fields = state.currentSignatureFields;
  const std::string& path = Field(fields, kFullPath);
  u_.page.lblStatus.SetCaption(path);
  std::string result;
  CheckValidFile(path, Field(fields, kItsCompany), Field(fields, kItsHash), result);
  if (result != "True") return;
  u_.results.AddFileTrace({.path = path,
                           .company = Field(fields, kItsCompany),
                           .threatName = Field(fields, kItsThreat),
                           .typeName = Field(fields, kItsType),
                           .spywareId = std::string(Trim(Field(fields, kItsId)))},
                          state.root);
}

void FileScan::CheckValidFile(std::string_view path, std::string_view company,
                              std::string_view hash, std::string& result) {
  result = "False";
  Reporting(u_.log, "CheckValidFile in frmMain", [&] {
    if (!FileExists(u_.files, path)) return;
    const bool isShortcut = GetFileExtension(path) == "lnk";
    if (isShortcut || HasCompanyOrHash(path, company, hash)) result = "True";
  });
}

bool FileScan::HasCompanyOrHash(std::string_view path, std::string_view company,
                                std::string_view hash) {
  const auto hashFits = [&] { return EqualText(HashFile(u_.files, path), hash); };
  if (EqualText(company, "unknown")) return !hash.empty() && hashFits();
  // A named company without a hash needs only the file: the two empty hash texts are equal.
  if (hash.empty()) return true;
  const std::string itsCompany = GetCompanyName(u_.files, path, [this] { u_.host.DoEvents(); });
  return EqualText(itsCompany, company) || hashFits();
}

}  // namespace quarnel
