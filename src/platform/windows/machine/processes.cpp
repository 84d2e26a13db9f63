#include "platform/processes.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "platform/windows/backends.h"
#include "platform/windows/machine/privilege.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/winapi.h"

namespace quarnel {
namespace {

constexpr size_t kLongestImagePath = 32768;
constexpr const wchar_t* kDebugPrivilege = L"SeDebugPrivilege";

// A process with as many rights to ask it as can be had.
KernelHandle OpenForQuestions(uint32_t id) {
  if (Newer().queryFullProcessImageName) {
    KernelHandle process(OpenProcess(kProcessQueryLimitedInformation, FALSE, id));
    if (process.Valid()) return process;
  }
  return KernelHandle(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id));
}

// A process that ended stays known as long as somebody holds a handle of it.
bool HasEnded(const KernelHandle& process) {
  DWORD code = 0;
  return GetExitCodeProcess(process.Get(), &code) && code != STILL_ACTIVE;
}

// Some programs of the system itself are named by the path that the kernel was given.
std::wstring WithoutKernelForms(const std::wstring& path) {
  constexpr std::wstring_view kDosDevices = LR"(\??\)";
  constexpr std::wstring_view kSystemRoot = LR"(\SystemRoot\)";
  if (path.starts_with(kDosDevices)) return path.substr(kDosDevices.size());
  if (!path.starts_with(kSystemRoot)) return path;
  wchar_t folder[MAX_PATH] = {};
  if (GetWindowsDirectoryW(folder, MAX_PATH) == 0) return path;
  return std::wstring(folder).append(path, kSystemRoot.size() - 1, std::wstring::npos);
}

std::optional<std::string> ImagePath(const KernelHandle& process) {
  std::wstring path(kLongestImagePath, L'\0');
  auto size = static_cast<DWORD>(path.size());
  const auto query = Newer().queryFullProcessImageName;
  if (!query || !query(process.Get(), 0, path.data(), &size)) {
    size =
        GetModuleFileNameExW(process.Get(), nullptr, path.data(), static_cast<DWORD>(path.size()));
  }
  path.resize(std::min<size_t>(size, path.size()));
  if (path.empty() || path[0] == L'\0') return std::nullopt;
  return Narrow(WithoutKernelForms(path));
}

// When a process began; 0 when it does not tell.
uint64_t StartOf(const KernelHandle& process) {
  FILETIME start = {};
  FILETIME other = {};
  if (!GetProcessTimes(process.Get(), &start, &other, &other, &other)) return 0;
  return uint64_t{start.dwHighDateTime} << 32 | start.dwLowDateTime;
}

class WindowsProcesses : public Processes {
 public:
  std::optional<std::vector<ProcessRecord>> Snapshot() override {
    const KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    if (!snapshot.Valid() || !Process32FirstW(snapshot.Get(), &entry)) return std::nullopt;
    std::vector<ProcessRecord> records;
    starts_.clear();
    do {
      ProcessRecord record{entry.th32ProcessID, entry.th32ParentProcessID, {}};
      if (record.id != 0) {
        const KernelHandle process = OpenForQuestions(record.id);
        if (process.Valid()) {
          if (HasEnded(process)) continue;
          starts_[record.id] = StartOf(process);
          record.executable = ImagePath(process).value_or("");
        }
      }
      if (record.executable.empty()) record.executable = Narrow(entry.szExeFile);
      records.push_back(std::move(record));
    } while (Process32NextW(snapshot.Get(), &entry));
    return records;
  }

  std::optional<std::string> MainModulePath(uint32_t id) override {
    if (id == 0) return std::nullopt;
    const KernelHandle process = OpenForQuestions(id);
    if (!process.Valid() || HasEnded(process)) return std::nullopt;
    return ImagePath(process);
  }

  bool Terminate(uint32_t id, uint32_t exitCode) override {
    const RaisedPrivilege debug(kDebugPrivilege);
    if (HasGone(id)) return false;
    // No other right is asked for: one that is missing would keep the process alive.
    const KernelHandle process(OpenProcess(PROCESS_TERMINATE, FALSE, id));
    return process.Valid() && TerminateProcess(process.Get(), exitCode);
  }

  bool WaitForEnd(uint32_t id, std::chrono::milliseconds timeout) override {
    if (id == 0 || HasGone(id)) return true;
    const RaisedPrivilege debug(kDebugPrivilege);
    const KernelHandle process(OpenProcess(SYNCHRONIZE, FALSE, id));
    if (!process.Valid()) return GetLastError() != ERROR_ACCESS_DENIED;
    constexpr auto kLongest = std::chrono::milliseconds(INFINITE - 1);
    const auto wait = std::clamp(timeout, std::chrono::milliseconds(0), kLongest);
    return WaitForSingleObject(process.Get(), static_cast<DWORD>(wait.count())) == WAIT_OBJECT_0;
  }

  uint32_t OwnId() override { return GetCurrentProcessId(); }

 private:
  // Whether the process has ended, or its number belongs to another one than at the last snapshot:
  // the system soon gives the number of an ended process to a new one.
  bool HasGone(uint32_t id) const {
    const KernelHandle process = OpenForQuestions(id);
    if (!process.Valid()) return GetLastError() == ERROR_INVALID_PARAMETER;
    const auto seen = starts_.find(id);
    return HasEnded(process) || (seen != starts_.end() && seen->second != StartOf(process));
  }

  std::unordered_map<uint32_t, uint64_t> starts_;  // by process, of the last snapshot
};

}  // namespace

std::unique_ptr<Processes> MakeProcesses() { return std::make_unique<WindowsProcesses>(); }

}  // namespace quarnel
