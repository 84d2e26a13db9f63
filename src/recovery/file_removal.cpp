#include "recovery/file_removal.h"

#include "base/text.h"
#include "core/existing_files.h"
#include "core/own_files.h"
#include "core/paths.h"
#include "platform/names.h"
#include "recovery/safe_path.h"

namespace quarnel {
namespace {

constexpr std::string_view kQuarantine = "Quarantine";

// As much of a program's name as is compared.
constexpr size_t kComparedLength = 15;

std::string_view BeforePoint(std::string_view name) { return name.substr(0, name.find('.')); }

}  // namespace

std::string QuarantinedName(std::string_view baseName) {
  std::string name;
  for (const char c : baseName) name += std::to_string(static_cast<unsigned char>(c));
  return name;
}

std::string FileRemoval::WhyRefused(std::string_view path) {
  if (const std::string_view reason = WhyUnsafe(path); !reason.empty()) return std::string(reason);
  if (u_.files.Stat(path) && !files_.Stat(path)) return "a folder on the way to it is a link";
  return {};
}

std::string FileRemoval::NameAt(std::string_view path) {
  const auto entry = files_.Stat(path);
  return entry ? entry->name : std::string();
}

bool FileRemoval::IsListed(std::string_view path) { return FileExists(files_, path); }

void FileRemoval::Delete(std::string_view path) {
  lastFailure_.clear();
  try {
    files_.Delete(path);
  } catch (const RuntimeError& error) {
    lastFailure_ = error.Description();
  }
}

bool FileRemoval::DeleteByExtension(std::string_view path, FileOutcome& outcome) {
  lastFailure_.clear();
  outcome = {};
  handled_ = {.path = std::string(path), .name = NameAt(path)};
  // A text without a backslash names no file, and none is looked for.
  if (path.find('\\') != std::string_view::npos) outcome.obstacle = WhyRefused(path);
  if (!outcome.obstacle.empty()) {
    outcome.refused = true;
    u_.log.NoteInPassing(
        "cmdRemoveSpywares_Click in frmMain",
        RuntimeError(ErrorNumber::kPermissionDenied, outcome.obstacle + ": " + std::string(path)));
    return true;
  }
  const std::string extension = ToUpper(GetFileExtension(path));
  bool deleted = false;
  if (extension == "EXE") {
    deleted = StopAndKillSpyExe(path) == 1;
  } else if (extension == "OCX" || extension == "DLL") {
    deleted = UnregisterAndDeleteDLLAndOCX(path) == 1;
  } else {
    deleted = DeleteSpywareFile(path);
  }
  outcome.obstacle = lastFailure_;
  return deleted;
}

bool FileRemoval::StopThisProcess(std::string_view exeName) {
  std::vector<ProcessRecord> records;
  Process32_Enum(u_.processes, records, [this] { u_.host.DoEvents(); });
  std::string_view wanted = BeforePoint(exeName);
  wanted = Trim(wanted.substr(wanted.rfind('\\') + 1).substr(0, kComparedLength));
  uint32_t id = 0;
  for (const ProcessRecord& record : records) {
    const std::string base = FileName_Parse(record.executable);
    const std::string_view name =
        Trim(BeforePoint(std::string_view(base).substr(0, kComparedLength)));
    u_.host.DoEvents();
    // A record without a path has no name to compare.
    if (base.empty() || !EqualNames(name, wanted)) continue;
    id = record.id;
    break;
  }
  constexpr int kMostRetries = 10;
  for (int retry = 0;; ++retry) {
    if (KillProcess(u_.processes, id, 0)) return true;
    if (u_.processes.WaitForEnd(id, Milliseconds(1))) return true;
    if (retry >= kMostRetries) return false;
  }
}

int FileRemoval::StopAndKillSpyExe(std::string_view path) {
  constexpr int kNotThere = -1;
  constexpr int kStillRuns = 2;
  const size_t slash = path.rfind('\\');
  if (slash == std::string_view::npos) return 0;
  if (!IsListed(path)) return kNotThere;
  if (!StopThisProcess(path.substr(slash + 1))) {
    lastFailure_ = "its program could not be ended";
    return kStillRuns;
  }
  if (IsListed(path)) Delete(path);
  return 0;
}

int FileRemoval::UnregisterAndDeleteDLLAndOCX(std::string_view path) {
  // A component is not loaded only to be unregistered: that would run the threat's own code.
  if (path.rfind('\\') == std::string_view::npos || !IsListed(path)) return 0;
  Delete(path);
  return lastFailure_.empty() ? 1 : 0;
}

bool FileRemoval::DeleteSpywareFile(std::string_view path) {
  if (path.rfind('\\') == std::string_view::npos || !IsListed(path)) return false;
  constexpr int kAttempts = 8;
  bool gone = false;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (!gone) {
      Delete(path);
      gone = lastFailure_.empty();
    }
    u_.host.DoEvents();
  }
  return true;
}

std::string FileRemoval::QuarantineName(std::string_view path) {
  const std::string folder = OwnFolderToWrite(
      files_, u_.machine, GetPathWithSlash(u_.machine.ProgramFolder()) + std::string(kQuarantine));
  const std::string target = folder + "\\" + QuarantinedName(path.substr(path.rfind('\\') + 1));
  std::string name = target;
  const bool strict = u_.settings.Get(setting::kStrict) == 1;
  for (int number = 2; strict && files_.Stat(name); ++number) {
    name = target + "_" + std::to_string(number);
  }
  return name;
}

void FileRemoval::MoveThisFile(std::string_view path, FileOutcome& outcome) {
  try {
    // Where names may differ in letter case alone, a deleted file's place shows its twin.
    const std::string present = NameAt(path);
    const bool isTwin = handled_.path == path && !handled_.name.empty() && handled_.name != present;
    if (present.empty() || isTwin) return;
    if (!IsListed(path)) {
      outcome.obstacle = "a hidden file is left alone";
      return;
    }
    const std::string target = QuarantineName(path);
    files_.Move(path, target);
    outcome.quarantine = target;
  } catch (const RuntimeError& error) {
    outcome.obstacle = error.Description();
    u_.log.NoteInPassing("MoveThisFile", error);
  }
}

}  // namespace quarnel
