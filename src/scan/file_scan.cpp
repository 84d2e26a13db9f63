#include "scan/file_scan.h"

#include <utility>

#include "base/text.h"
#include "core/existing_files.h"
#include "core/paths.h"
#include "platform/version_info.h"
#include "scan/folders.h"
#include "scan/progress.h"
#include "signatures/md5.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

constexpr std::string_view kFolderToken = "[[FOLDER]]";

// The fields of a line in QNLFSig.dll.
enum SignatureField { kCompany, kThreatName, kTypeCode, kFolderCode, kPath, kHashCode, kSpywareId };

}  // namespace

void FileScan::ScanSignatureFiles() {
  size_t line = 1;
  const auto where = [&] { return LineOf(signature_file::kFiles, line); };
  ReportingPhase(u_, "ScanSignatureFiles in frmMain", phase::kFiles, where, [&] {
    if (!SignaturePresent(u_.files, u_.machine, signature_file::kFiles)) return;
    Phase work(u_.files);
    work.user = GetCurrentUser(u_.machine);
    work.dd.LinkedFolder = [&](const std::string& path) { u_.unread.Add("link", path); };
    work.dd.NewFile = [&](bool&, const std::string& path) { dd_NewFile(path, work); };
    SignatureLines lines(u_.files, u_.machine, signature_file::kFiles);
    for (;;) {
      ++line;
      const auto text = lines.Next();
      if (!text) return;
      ScanLine(*text, work);
      if (u_.flags.scanStopRequested) return;
      u_.host.DoEvents();
    }
  });
}

void FileScan::ShowProgress() {
  const int inspected = CountUp(u_.page.lblFilesFolderInspected);
  if (inspected <= u_.page.pbgMain.Max()) u_.page.pbgMain.SetValue(inspected);
  ShowPercent(u_.page.lblPercentageCompleted,
              "Scanning Signature Files/Folder : ", PercentOf(u_.page.pbgMain), "% Completed.");
}

void FileScan::ScanLine(std::string_view line, Phase& phase) {
  ShowProgress();
  if (u_.flags.scanStopRequested) return;
  phase.currentSignatureFields.emplace(line);
  phase.fileSearchRows.clear();
  ExpandLine(phase);
  if (u_.flags.scanStopRequested) return;
  for (const std::string& path : phase.fileSearchRows) {
    TestRow(path, phase);
    if (u_.flags.scanStopRequested) return;
    u_.host.DoEvents();
  }
}

// A folder's place does not change within a phase.
const std::string& FileScan::FolderOf(std::string_view code, Phase& phase) {
  const int16_t number = ToInteger(code);
  const bool known = number >= 0 && static_cast<size_t>(number) < phase.folders.size();
  auto& folder = phase.folders[known ? static_cast<size_t>(number) : 0];
  if (!folder) folder = GetFolder(u_.machine, number).front();
  return *folder;
}

void FileScan::ExpandLine(Phase& phase) {
  const SignatureFields& fields = *phase.currentSignatureFields;
  std::string path = FolderOf(fields[kFolderCode], phase);
  path.append(fields[kPath]);
  if (path.find("[[") == std::string::npos) return dd_NewFile(std::move(path), phase);
  path = Replace(path, kUserToken, phase.user);
  if (path.find(kFolderToken) == std::string::npos) return dd_NewFile(std::move(path), phase);
  phase.dd.SetFolder(Replace(path, kFolderToken, ""));
  phase.dd.SetPattern("*.*");
  if (!phase.dd.Folder().empty()) phase.dd.BeginSearch();
}

void FileScan::dd_NewFile(std::string path, Phase& phase) {
  phase.fileSearchRows.push_back(std::move(path));
}

void FileScan::TestRow(const std::string& path, Phase& phase) {
  const SignatureFields& fields = *phase.currentSignatureFields;
  u_.results.RecomputeCounters();
  const std::string_view typeName = GetTypeOfSpyWare(fields[kTypeCode]);
  if (path.find(',') == std::string::npos) {
    return TestCandidate({.path = path,
                          .company = fields[kCompany],
                          .threatName = fields[kThreatName],
                          .typeName = typeName,
                          .hash = fields[kHashCode],
                          .spywareId = fields[kSpywareId]},
                         phase);
  }
  // A candidate is one text with commas between its fields: one in its path shifts them, and the
  // test of the path's first part fails quietly.
  std::string row = path;
  for (const std::string_view field :
       {fields[kCompany], fields[kThreatName], typeName, fields[kHashCode], fields[kSpywareId]}) {
    row.append(",").append(field);
  }
  const SignatureFields shifted(row);
  TestCandidate({.path = shifted[0],
                 .company = shifted[1],
                 .threatName = shifted[2],
                 .typeName = shifted[3],
                 .hash = shifted[4],
                 .spywareId = shifted[5]},
                phase);
}

void FileScan::TestCandidate(const Candidate& candidate, Phase& phase) {
  u_.page.lblStatus.SetCaption(candidate.path);
  if (!phase.index.FileExists(candidate.path)) return;
  std::string result;
  CheckValidFile(candidate.path, candidate.company, candidate.hash, result);
  if (result != "True") return;
  const FileTrace trace{.path = std::string(candidate.path),
                        .typeName = std::string(candidate.typeName),
                        .threatName = std::string(candidate.threatName)};
  u_.results.Enter({.threat = {.name = trace.threatName,
                               .typeName = trace.typeName,
                               .company = std::string(candidate.company),
                               .spywareId = std::string(Trim(candidate.spywareId))},
                    .trace = trace,
                    .text = trace.path,
                    .knownBy = KnownBy::kFileRows,
                    .lastRoot = &phase.root,
                    .oncePerTrace = true});
}

void FileScan::CheckValidFile(std::string_view path, std::string_view company,
                              std::string_view hash, std::string& result) {
  result = "False";
  Reporting(u_.log, "CheckValidFile in frmMain", [&] {
    if (FileExists(u_.files, path) && IsThreat(path, company, hash)) result = "True";
  });
}

bool FileScan::IsThreat(std::string_view path, std::string_view company, std::string_view hash) {
  if (GetFileExtension(path) == "lnk") return true;
  bool stopped = false;  // while the file was read
  const auto goesOn = [&] {
    u_.host.DoEvents();
    stopped = u_.flags.scanStopRequested;
    return !stopped;
  };
  const auto hashFits = [&] {
    bool grew = false;
    const std::string itsHash = HashFile(
        u_.files, path, [&] { return !goesOn(); }, &grew);
    if ((itsHash == kNoHash && !stopped) || grew) u_.unread.Add("file", path);
    return EqualText(itsHash, hash);
  };
  if (EqualText(company, "unknown")) return !hash.empty() && hashFits();
  // A named company without a hash needs only the file: the two empty hash texts are equal.
  if (hash.empty()) return true;
  const std::string itsCompany = GetCompanyName(u_.files, path, goesOn);
  if (stopped) return false;
  return EqualText(itsCompany, company) || hashFits();
}

}  // namespace quarnel
