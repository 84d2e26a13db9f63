// The processes of a machine folder are those of this system whose executable lies on one of its
// drives. No other process is ever listed or ended.

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/posix/backends.h"
#include "platform/posix/unique_fd.h"

namespace quarnel {
namespace {

using Clock = std::chrono::steady_clock;

std::string ProcPath(uint32_t id, std::string_view name) {
  return "/proc/" + std::to_string(id) + '/' + std::string(name);
}

// The facts of one process that /proc tells in one line.
struct Status {
  char state = '?';
  uint32_t parentId = 0;
  uint64_t startTime = 0;  // in clock ticks since the system's start
};

// Nothing when there is no such process.
std::optional<Status> ReadStatus(uint32_t id) {
  const UniqueFd file(open(ProcPath(id, "stat").c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.Valid()) return std::nullopt;
  char buffer[1024];
  const ssize_t size = read(file.Get(), buffer, sizeof buffer);
  if (size <= 0) return std::nullopt;
  std::string_view line(buffer, static_cast<size_t>(size));
  // The second field is the program's name in parentheses, and may hold anything.
  const size_t nameEnd = line.rfind(')');
  if (nameEnd == std::string_view::npos) return std::nullopt;
  line.remove_prefix(nameEnd + 1);

  Status status;
  for (int field = 3; field <= 22 && !line.empty(); ++field) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::string_view text = line.substr(0, line.find(' '));
    line.remove_prefix(text.size());
    if (field == 3 && !text.empty()) status.state = text.front();
    if (field == 4) std::from_chars(text.data(), text.data() + text.size(), status.parentId);
    if (field == 22) std::from_chars(text.data(), text.data() + text.size(), status.startTime);
  }
  return status;
}

bool HasEnded(const std::optional<Status>& status) {
  return !status || status->state == 'Z' || status->state == 'X';
}

// The host path of a process's executable; nothing when it is gone or may not be read.
std::optional<std::string> ReadExecutable(uint32_t id) {
  const std::string link = ProcPath(id, "exe");
  std::string path(PATH_MAX, '\0');
  const ssize_t size = readlink(link.c_str(), path.data(), path.size());
  if (size <= 0) return std::nullopt;
  path.resize(static_cast<size_t>(size));

  // The system marks an executable that was deleted while it runs; a name may end so by itself.
  constexpr std::string_view kDeleted = " (deleted)";
  if (path.ends_with(kDeleted)) {
    struct stat running = {};
    struct stat named = {};
    const bool isItsName = stat(link.c_str(), &running) == 0 && stat(path.c_str(), &named) == 0 &&
                           running.st_dev == named.st_dev && running.st_ino == named.st_ino;
    if (!isItsName) path.resize(path.size() - kDeleted.size());
  }
  return path;
}

// A descriptor that stays with this very process, also when its number is given to another one.
UniqueFd OpenProcess(uint32_t id) {
  return UniqueFd(static_cast<int>(syscall(SYS_pidfd_open, static_cast<pid_t>(id), 0)));
}

// Whether the system has no such descriptors or forbids them, so one must do without.
bool LacksDescriptors(const UniqueFd& process) {
  return !process.Valid() && (errno == ENOSYS || errno == EPERM);
}

class ProcProcesses : public Processes {
 public:
  explicit ProcProcesses(PathMap& paths) : paths_(paths) {}

  std::optional<std::vector<ProcessRecord>> Snapshot() override {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc"), closedir);
    if (!folder) return std::nullopt;
    // The table of a Windows system begins with this entry, which nobody can open. Without it a
    // machine on which one program runs would have the last index of one on which none does.
    std::vector<ProcessRecord> records = {{0, 0, "[System Process]"}};
    startTimes_.clear();
    while (const dirent* entry = readdir(folder.get())) {
      const std::string_view name = entry->d_name;
      uint32_t id = 0;
      const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
      if (error != std::errc() || end != name.data() + name.size()) continue;
      auto executable = MainModulePath(id);
      if (!executable) continue;
      const auto status = ReadStatus(id);
      if (HasEnded(status)) continue;
      startTimes_[id] = status->startTime;
      records.push_back({id, status->parentId, std::move(*executable)});
    }
    std::sort(records.begin(), records.end(),
              [](const ProcessRecord& a, const ProcessRecord& b) { return a.id < b.id; });
    return records;
  }

  std::optional<std::string> MainModulePath(uint32_t id) override {
    if (id == 0) return std::nullopt;
    const auto host = ReadExecutable(id);
    if (!host) return std::nullopt;
    return paths_.ToWindows(*host);
  }

  // A killed process has no exit code here.
  bool Terminate(uint32_t id, uint32_t /*exitCode*/) override {
    if (id == 0 || id > INT_MAX) return false;
    const UniqueFd process = OpenProcess(id);
    if (!process.Valid() && !LacksDescriptors(process)) return false;
    // Checked after the descriptor was opened: from here on the number cannot change hands.
    if (!MainModulePath(id) || !IsTheOneSeen(id, ReadStatus(id))) return false;
    if (!process.Valid()) return kill(static_cast<pid_t>(id), SIGKILL) == 0;
    return syscall(SYS_pidfd_send_signal, process.Get(), SIGKILL, nullptr, 0) == 0;
  }

  bool WaitForEnd(uint32_t id, std::chrono::milliseconds timeout) override {
    if (id == 0 || id > INT_MAX) return true;
    const auto deadline = Clock::now() + std::clamp(timeout, std::chrono::milliseconds(0),
                                                    std::chrono::milliseconds(INT_MAX));
    const UniqueFd process = OpenProcess(id);
    const bool hasDescriptor = process.Valid();
    if (!hasDescriptor && !LacksDescriptors(process)) return true;
    while (true) {
      const auto status = ReadStatus(id);
      if (HasEnded(status) || !IsTheOneSeen(id, status)) return true;
      const auto left =
          std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
      if (left <= 0) return false;
      // Without a descriptor this is only a pause.
      pollfd wait = {process.Get(), POLLIN, 0};
      const auto pause = hasDescriptor ? left : std::min<decltype(left)>(left, 10);
      if (poll(&wait, hasDescriptor ? 1 : 0, static_cast<int>(pause)) > 0) return true;
    }
  }

  uint32_t OwnId() override { return static_cast<uint32_t>(getpid()); }

 private:
  // False when the process number belongs to another process than at the last snapshot.
  bool IsTheOneSeen(uint32_t id, const std::optional<Status>& status) const {
    const auto seen = startTimes_.find(id);
    return status && (seen == startTimes_.end() || seen->second == status->startTime);
  }

  PathMap& paths_;
  std::unordered_map<uint32_t, uint64_t> startTimes_;  // by process, of the last snapshot
};

}  // namespace

std::unique_ptr<Processes> MakeProcesses(PathMap& paths) {
  return std::make_unique<ProcProcesses>(paths);
}

}  // namespace quarnel
