#include "platform/shell.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/posix/backends.h"
#include "platform/shortcut.h"

namespace quarnel {
namespace {

// Links are some hundred bytes; what is larger is none.
constexpr uint64_t kLargestShortcut = 1 << 20;

std::optional<std::string> FindInPath(std::string_view program) {
  const char* path = std::getenv("PATH");
  for (const std::string& folder : Split(path ? path : "/usr/local/bin:/usr/bin:/bin", ":")) {
    // A folder relative to wherever the program stands is no place for the desktop's own tools.
    if (!folder.starts_with('/')) continue;
    std::string candidate = folder + '/' + std::string(program);
    struct stat status = {};
    if (stat(candidate.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        access(candidate.c_str(), X_OK) == 0) {
      return candidate;
    }
  }
  return std::nullopt;
}

// How a program is started: as its own session, so that a key press in this terminal does not end
// it, with signals as at first, and without any of this program's files.
class SpawnSettings {
 public:
  SpawnSettings() {
    posix_spawnattr_init(&attributes_);
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setflags(
        &attributes_,
        static_cast<short>(POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK));
    posix_spawn_file_actions_init(&files_);
    posix_spawn_file_actions_addopen(&files_, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files_, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&files_, 1, 2);
    posix_spawn_file_actions_addclosefrom_np(&files_, 3);
  }
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&files_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  const posix_spawnattr_t* Attributes() const { return &attributes_; }
  const posix_spawn_file_actions_t* Files() const { return &files_; }

 private:
  posix_spawnattr_t attributes_ = {};
  posix_spawn_file_actions_t files_ = {};
};

class PosixShell : public Shell {
 public:
  PosixShell(PathMap& paths, Files& files) : paths_(paths), files_(files) {}
  ~PosixShell() override { ForgetEnded(); }
  PosixShell(const PosixShell&) = delete;
  PosixShell& operator=(const PosixShell&) = delete;

  // The answer is a host path, which only Run takes. Associations of the machine itself are not
  // followed: its programs are what is being examined.
  std::optional<std::string> FindExecutable(std::string_view path) override {
    if (!files_.Stat(path)) return std::nullopt;
    return FindInPath("xdg-open");
  }

  bool Run(std::string_view program, std::string_view argument) override {
    ForgetEnded();
    std::string host(program);
    if (!host.starts_with('/')) {
      const auto found = ProgramOnDrive(program);
      if (!found) return false;
      host = *found;
    }
    std::string argumentText(argument);
    std::vector<char*> arguments = {host.data()};
    if (!argumentText.empty()) arguments.push_back(argumentText.data());
    arguments.push_back(nullptr);

    const SpawnSettings settings;
    pid_t process = 0;
    // No shell stands between: whatever the argument holds, it is one argument.
    if (posix_spawn(&process, host.c_str(), settings.Files(), settings.Attributes(),
                    arguments.data(), environ) != 0) {
      return false;
    }
    children_.push_back(process);
    return true;
  }

  std::optional<std::string> ShortcutTarget(std::string_view path) override {
    try {
      return ReadShortcutTarget(ReadWholeFile(files_, path, kLargestShortcut));
    } catch (const RuntimeError&) {
      return std::nullopt;
    }
  }

  // Components are code for another system.
  bool CallRegistrationEntry(std::string_view /*path*/, std::string_view /*entry*/) override {
    return false;
  }

 private:
  // The host path of a program on a drive, which gets the right to be run: Windows knows none.
  std::optional<std::string> ProgramOnDrive(std::string_view path) {
    PathMap::Location place;
    if (!IgnoringErrors([&] { place = paths_.Locate(path); }) || !place.exists) {
      return std::nullopt;
    }
    struct stat status = {};
    if (stat(place.host.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    if (!(status.st_mode & S_IXUSR)) chmod(place.host.c_str(), status.st_mode | S_IXUSR);
    return place.host;
  }

  // Ended programs stay in the system's table until their starter asks about them.
  void ForgetEnded() {
    std::erase_if(children_, [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
  }

  PathMap& paths_;
  Files& files_;
  std::vector<pid_t> children_;
};

}  // namespace

std::unique_ptr<Shell> MakeShell(PathMap& paths, Files& files) {
  return std::make_unique<PosixShell>(paths, files);
}

}  // namespace quarnel
