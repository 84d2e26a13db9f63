#include "scan/memory_scan.h"

#include "base/text.h"
#include "core/paths.h"
#include "platform/version_info.h"
#include "scan/found_traces.h"
#include "scan/progress.h"
#include "signatures/md5.h"
#include "signatures/signature_files.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

constexpr std::string_view kProcess = "process";
constexpr std::string_view kLoading = "Loading signatures. Please wait...";

// Nobody is told of an inspection's end but the user of a scan.
template <typename Procedure>
void ReportingInspection(const ScanContext& u, std::string_view label, Procedure&& procedure) {
  const auto where = [] { return signature_file::kPrograms; };
  if (u.page.ImgStopScanMouseMove.Enabled()) {
    ReportingPhase(u, label, phase::kMemory, where, procedure);
  } else {
    Reporting(u.log, label, procedure);
  }
}

// The text between two positions of a line that may have been torn anywhere.
std::string Between(std::string_view text, size_t begin, size_t end) {
  if (begin >= text.size()) return {};
  return std::string(text.substr(begin, end == std::string_view::npos ? end : end - begin));
}

}  // namespace

std::string MemoryAlert::Question() const {
  return ToUpper(path) + " is running in the memory and has been detected as " + typeName +
         ".\r\n\r\n Do you wish to terminate this application?";
}

std::string MemoryScan::ActuallProcessName(std::string_view path) {
  std::string result(path);
  Reporting(u_.log, "ActuallProcessName of ModMemoryItemsInspected", [&] {
    constexpr std::string_view kMark = "SYSTEM32\\";
    const size_t mark = ToUpper(Trim(path)).rfind(kMark);
    if (mark == std::string::npos) return;
    result = GetWindowsSystemFolder(u_.machine) + "\\" +
             std::string(Trim(path).substr(mark + kMark.size()));
  });
  return result;
}

HashIndex MemoryScan::LoadPrograms() {
  u_.page.lblPercentageCompleted.SetCaption(kLoading);
  constexpr size_t kThreads = 2;
  return HashIndex::Load(u_.files, u_.machine, signature_file::kPrograms, kThreads, [this] {
    DoEvents();
    return true;
  });
}

void MemoryScan::MemoryItemsInspection(ProgressBar& progressBar) {
  ReportingInspection(u_, "MemoryItemsInspection of ModMemoryItemsInspected", [&] {
    std::vector<ProcessRecord> processes;
    const int count = Process32_Enum(processes_, processes, [this] { DoEvents(); });
    if (InScan() && count < 0) throw RuntimeError(ErrorNumber::kDeviceError, "running programs");
    if (count == u_.flags.lastProcessCount) {
      // At the start of a scan a single program counts as none.
      if (InScan() && count == 0 && processes.front().id != 0) {
        u_.unread.Add(kProcess, processes.front().executable);
      }
      return;
    }
    u_.flags.lastProcessCount = count;
    const int last = Process32_Enum(processes_, processes, [this] { DoEvents(); });
    if (!SignaturePresent(u_.files, u_.machine, signature_file::kPrograms)) return;
    const HashIndex signatures = LoadPrograms();
    progressBar.SetValue(0);
    progressBar.SetMax(std::max(last, 0) + 1);
    u_.page.lblStatus.SetCaption(" ");
    for (int i = 0; i <= last && !u_.flags.alertScanRequested; ++i) {
      progressBar.SetValue(i);
      if (InScan()) u_.page.lblMemoryInspected.SetCaption(std::to_string(i));
      ShowPercent(u_.page.lblPercentageCompleted, "Scanning Memory : ", PercentOf(progressBar),
                  "% Completed.");
      DoEvents();
      const ProcessRecord& process = processes[static_cast<size_t>(i)];
      if (const auto path = processes_.MainModulePath(process.id)) {
        Inspect(*path, signatures);
      } else if (process.id != 0) {  // the idle entry stands for no program
        u_.unread.Add(kProcess, process.executable);
      }
    }
  });
}

void MemoryScan::CountProcessIn95() {
  ReportingInspection(u_, "CountProcessIn95 of ModMemoryItemsInspected", [&] {
    if (!SignaturePresent(u_.files, u_.machine, signature_file::kPrograms)) return;
    const HashIndex signatures = LoadPrograms();
    std::vector<ProcessRecord> processes;
    const int last = Process32_Enum(processes_, processes, [this] { DoEvents(); });
    if (last < 0) throw RuntimeError(ErrorNumber::kDeviceError, "running programs");
    u_.page.pbgMain.SetMax(100);
    u_.page.lblStatus.SetCaption(" ");
    for (const ProcessRecord& process : processes) {
      if (u_.flags.alertScanRequested) break;
      IncrementProgressBar(u_.page.pbgMain);
      if (InScan()) CountUp(u_.page.lblMemoryInspected);
      u_.page.lblPercentageCompleted.SetCaption("Scanning Memory : " + u_.page.pbgMain.ValueText() +
                                                "% completed.");
      DoEvents();
      Inspect(CutAtNul(process.executable), signatures);
    }
    u_.page.lblPercentageCompleted.SetCaption("Scanning Memory : 100% completed.");
  });
}

void MemoryScan::Inspect(std::string_view modulePath, const HashIndex& signatures) {
  ++inspected_;
  u_.page.lblStatus.SetCaption(modulePath);
  const std::string named = ActuallProcessName(Trim(modulePath));
  std::string path = ActuallProcessName(ToUpper(Trim(modulePath)));
  // Where names may differ in letter case alone, this may be another file, and would be deleted.
  if (!LeadToOneFile(u_.files, path, named)) path = named;
  const std::string company = GetCompanyName(u_.files, path, [this] {
    DoEvents();
    return true;
  });
  bool grew = false;
  const std::string hash = HashFile(
      u_.files, path, [] { return false; }, &grew);
  if (hash == kNoHash || grew) u_.unread.Add("file", path);
  const auto position = signatures.Find(hash);
  if (!position) return;
  const std::string_view text = signatures.Text();
  const size_t first = text.find('^', *position + 1);
  const size_t second = first == std::string_view::npos ? first : text.find('^', first + 2);
  if (second == std::string_view::npos) {
    throw RuntimeError(ErrorNumber::kInvalidCall,
                       LineOf(signature_file::kPrograms, LineNumber(text, *position)));
  }
  const Hit hit{
      .typeCode = Between(text, first + 1, second),
      .threatName = std::string(Trim(Between(text, second + 1, text.find("\r\n", second + 1))))};
  if (InScan()) CountUp(u_.page.lblMemoryInfected);
  DetectRunningEXE(path, company, hash, hit);
}

void MemoryScan::DetectRunningEXE(std::string_view path, std::string_view company,
                                  std::string_view hash, const Hit& hit) {
  Reporting(u_.log, "DetectRunningEXE of ModMemoryItemsInspected", [&] {
    const std::string_view baseName = path.substr(0, path.find('.'));
    if (u_.results.IsSpywareIgnored(path, baseName, company)) return;
    const std::string_view typeName = GetTypeOfSpyWare(hit.typeCode);
    if (InScan()) {
      u_.results.AddSpaywareToResults(path, {.path = std::string(path),
                                             .typeName = std::string(typeName),
                                             .threatName = hit.threatName});
      return;
    }
    raiseAlert_({.path = std::string(path),
                 .company = std::string(company),
                 .hash = std::string(hash),
                 .typeName = std::string(typeName),
                 .threatName = hit.threatName});
  });
}

}  // namespace quarnel
