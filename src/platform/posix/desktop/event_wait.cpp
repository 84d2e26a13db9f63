#include "platform/event_wait.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "base/runtime_error.h"
#include "platform/posix/unique_fd.h"

namespace quarnel {
namespace {

// The posted work stands in the set of sources under this number.
constexpr EventWait::Id kPosted = 0;

class PosixEventWait : public EventWait {
 public:
  PosixEventWait() : all_(epoll_create1(EPOLL_CLOEXEC)), wake_(eventfd(0, EFD_CLOEXEC)) {
    if (!all_.Valid() || !wake_.Valid()) throw RuntimeError(ErrorNumber::kDeviceError);
    Control(EPOLL_CTL_ADD, wake_.Get(), kPosted, {});
  }

  Id Add(EventToken token, EventInterest interest, Ready ready) override {
    const Id id = ++lastId_;
    const int fd = static_cast<int>(token);
    Control(EPOLL_CTL_ADD, fd, id, interest);
    sources_.emplace(id, Source{fd, std::move(ready)});
    return id;
  }

  void Change(Id id, EventInterest interest) override {
    Control(EPOLL_CTL_MOD, sources_.at(id).fd, id, interest);
  }

  void Remove(Id id) override {
    const auto found = sources_.find(id);
    if (found == sources_.end()) return;
    epoll_ctl(all_.Get(), EPOLL_CTL_DEL, found->second.fd, nullptr);
    sources_.erase(found);
  }

  void Post(Ready work) override {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(work));
    hasPosted_ = true;
    eventfd_write(wake_.Get(), 1);
  }

  bool HasSources() const override { return !sources_.empty() || hasPosted_; }

  void Run() override { Wait(std::chrono::milliseconds(0)); }

  // One at a time: a handler that waits itself may have dealt with what else was ready.
  void Wait(std::optional<std::chrono::milliseconds> limit) override {
    std::optional<Id> ready = limit && limit->count() == 0 ? Next(0) : Sleep(limit);
    // Sources that become ready meanwhile are for the next round.
    for (size_t turns = sources_.size() + 1; ready; --turns) {
      RunHandler(*ready);
      if (turns == 0) return;
      ready = Next(0);
    }
  }

  std::optional<EventToken> LeaveWaiting(Ready) override { return EventToken(all_.Get()); }

 private:
  struct Source {
    int fd;
    Ready ready;
  };

  void Control(int operation, int fd, Id id, EventInterest interest) {
    epoll_event event{};
    event.events = (interest.read ? EPOLLIN : 0U) | (interest.write ? EPOLLOUT : 0U);
    event.data.u64 = id;
    if (epoll_ctl(all_.Get(), operation, fd, &event) != 0) {
      throw RuntimeError(ErrorNumber::kInvalidCall, "The system cannot wait for this.");
    }
  }

  // Goes on where a signal, such as that of a debugger, has interrupted it.
  std::optional<Id> Sleep(std::optional<std::chrono::milliseconds> limit) {
    using std::chrono::milliseconds, std::chrono::steady_clock;
    constexpr milliseconds kLongest = std::chrono::hours(24);
    const auto start = steady_clock::now();
    while (true) {
      const auto gone = std::chrono::floor<milliseconds>(steady_clock::now() - start);
      if (limit && gone >= *limit) return std::nullopt;
      const milliseconds rest = std::min(limit.value_or(kLongest) - gone, kLongest);
      if (const auto ready = Next(limit ? static_cast<int>(rest.count()) : -1)) return ready;
    }
  }

  std::optional<Id> Next(int timeout) {
    epoll_event event{};
    if (epoll_wait(all_.Get(), &event, 1, timeout) != 1) return std::nullopt;
    return Id{event.data.u64};
  }

  void RunHandler(Id id) {
    if (id == kPosted) return RunPosted();
    const auto source = sources_.find(id);
    if (source == sources_.end()) return;
    const Ready ready = source->second.ready;  // it may remove its source
    ready();
  }

  void RunPosted() {
    Ready work;
    {
      const std::lock_guard lock(mutex_);
      if (!posted_.empty()) {
        work = std::move(posted_.front());
        posted_.pop_front();
      }
      hasPosted_ = !posted_.empty();
      eventfd_t count = 0;
      if (!hasPosted_) eventfd_read(wake_.Get(), &count);
    }
    if (work) work();
  }

  UniqueFd all_;
  UniqueFd wake_;
  Id lastId_ = kPosted;
  std::map<Id, Source> sources_;
  std::mutex mutex_;
  std::deque<Ready> posted_;
  std::atomic<bool> hasPosted_ = false;
};

}  // namespace

std::unique_ptr<EventWait> MakeEventWait() { return std::make_unique<PosixEventWait>(); }

}  // namespace quarnel
