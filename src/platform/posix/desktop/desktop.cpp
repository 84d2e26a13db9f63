// Instances of the program find each other through the machine folder that they share. Each
// announcing process holds an exclusive lock on a file of its own in the folder "instances":
//
//   instances/NUMBER      first line: class name; the rest: caption
//
// The number is the window's identifier. The lock falls when its process ends, however it ends, so
// a file without a lock is a left-over, which whoever meets it removes. To bring a window forward
// its file's time of change is set; the announcing process, which keeps the file open, looks for
// that (TakeForwardRequest).

#include "platform/desktop.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <memory>
#include <random>
#include <string>

#include "platform/posix/backends.h"
#include "platform/posix/desktop/display_windows.h"
#include "platform/posix/unique_fd.h"

namespace quarnel {
namespace {

// Class and caption are no longer than this together.
constexpr size_t kLongestAnnouncement = 4096;

std::string Announcement(std::string_view className, std::string_view caption) {
  std::string text(className);
  text += '\n';
  text += caption;
  text.resize(std::min(text.size(), kLongestAnnouncement));
  return text;
}

std::string ReadAnnouncement(int file) {
  std::string text(kLongestAnnouncement, '\0');
  const ssize_t size = pread(file, text.data(), text.size(), 0);
  text.resize(size > 0 ? static_cast<size_t>(size) : 0);
  return text;
}

class FolderDesktop : public Desktop {
 public:
  explicit FolderDesktop(const MachineFolder& folder) : folder_(folder.path + "/instances") {}
  ~FolderDesktop() override { TakeBack(); }
  FolderDesktop(const FolderDesktop&) = delete;
  FolderDesktop& operator=(const FolderDesktop&) = delete;

  // Those of the user's display: programs there may hold files of the machine open.
  void EnumWindows(const std::function<bool(WindowId, std::string_view)>& visit) override {
    EnumDisplayWindows(visit);
  }
  bool IsBrowserClass(std::string_view className) const override {
    return IsDisplayBrowserClass(className);
  }
  void PostClose(WindowId window) override { CloseDisplayWindow(window); }

  std::optional<WindowId> FindWindow(std::string_view className,
                                     std::string_view caption) override {
    const std::string wanted = Announcement(className, caption);
    const UniqueFd folder = OpenFolder();
    UniqueFd listed(fcntl(folder.Get(), F_DUPFD_CLOEXEC, 0));
    const std::unique_ptr<DIR, int (*)(DIR*)> names(fdopendir(listed.Get()), closedir);
    if (!names) return std::nullopt;
    listed.Release();
    while (const dirent* entry = readdir(names.get())) {
      const std::string_view name = entry->d_name;
      WindowId id = 0;
      const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
      if (error != std::errc() || end != name.data() + name.size()) continue;
      const UniqueFd file = OpenAnnouncement(folder, id);
      if (!file.Valid()) continue;
      if (flock(file.Get(), LOCK_SH | LOCK_NB) == 0) {
        unlinkat(folder.Get(), entry->d_name, 0);
      } else if (ReadAnnouncement(file.Get()) == wanted) {
        return id;
      }
    }
    return std::nullopt;
  }

  void BringForward(WindowId window) override {
    const UniqueFd file = OpenAnnouncement(OpenFolder(), window);
    if (file.Valid()) futimens(file.Get(), nullptr);
  }

  bool TakeForwardRequest() override {
    struct stat status = {};
    if (!own_.Valid() || fstat(own_.Get(), &status) != 0) return false;
    const bool changed =
        status.st_mtim.tv_sec != changed_.tv_sec || status.st_mtim.tv_nsec != changed_.tv_nsec;
    changed_ = status.st_mtim;
    return changed;
  }

  void Announce(std::string_view className, std::string_view caption) override {
    if (caption.empty()) return TakeBack();
    if (!own_.Valid()) TakeNumber();
    const std::string text = Announcement(className, caption);
    if (!own_.Valid() || pwrite(own_.Get(), text.data(), text.size(), 0) < 0 ||
        ftruncate(own_.Get(), static_cast<off_t>(text.size())) != 0) {
      return TakeBack();  // not findable, which only costs the search for an earlier instance
    }
    TakeForwardRequest();
  }

 private:
  // A link in the folder's place is not followed: left-overs are deleted there.
  UniqueFd OpenFolder() const {
    return UniqueFd(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  }

  // Whatever else may lie there under such a name is not opened.
  static UniqueFd OpenAnnouncement(const UniqueFd& folder, WindowId id) {
    UniqueFd file(openat(folder.Get(), std::to_string(id).c_str(),
                         O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!file.Valid() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) file.Reset();
    return file;
  }

  void TakeNumber() {
    mkdir(folder_.c_str(), 0700);
    const UniqueFd folder = OpenFolder();
    std::random_device random;
    for (int attempt = 0; attempt < 10 && !own_.Valid(); ++attempt) {
      id_ = WindowId{random()} + 1;
      UniqueFd file(openat(folder.Get(), std::to_string(id_).c_str(),
                           O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
      struct stat status = {};
      // Another process may have taken the new file for a left-over before it was locked.
      if (file.Valid() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0 &&
          fstat(file.Get(), &status) == 0 && status.st_nlink > 0) {
        own_ = std::move(file);
      }
    }
  }

  void TakeBack() {
    if (!own_.Valid()) return;
    unlinkat(OpenFolder().Get(), std::to_string(id_).c_str(), 0);
    own_.Reset();
  }

  std::string folder_;
  UniqueFd own_;  // the locked file of this process
  WindowId id_ = 0;
  struct timespec changed_ = {};
};

}  // namespace

std::unique_ptr<Desktop> MakeDesktop(const MachineFolder& folder) {
  return std::make_unique<FolderDesktop>(folder);
}

}  // namespace quarnel
