#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace quarnel {

// What the system can wait for: a file descriptor on one, a HANDLE on another. Only the platform
// makes one and looks into it.
enum class EventToken : std::intptr_t {};

// What makes a token ready. A system whose tokens have a single state knows no difference.
struct EventInterest {
  bool read = true;
  bool write = false;
};

// Waits for many sources of events at once and runs their handlers, all on the thread that made it.
// A handler may add and remove sources, its own among them, and wait itself; what it does not take
// from its source makes it run again. Exceptions of a handler pass through to whom had it run.
class EventWait {
 public:
  using Id = uint64_t;
  using Ready = std::function<void()>;

  virtual ~EventWait() = default;

  // Runs `ready` whenever the token is; a token has one source at a time. Raises RuntimeError when
  // the system cannot wait for it. The token must stay open until its source is removed.
  virtual Id Add(EventToken token, EventInterest interest, Ready ready) = 0;
  virtual void Change(Id id, EventInterest interest) = 0;
  virtual void Remove(Id id) = 0;

  // Has `work` run once, in the next processing of events. Any thread may call this.
  virtual void Post(Ready work) = 0;

  // Whether there is anything to wait for or to run. Costs next to nothing.
  virtual bool HasSources() const = 0;
  // Runs the handlers of what is ready now.
  virtual void Run() = 0;
  // Sleeps until something is ready, but for no longer than `limit`, and runs the handlers.
  virtual void Wait(std::optional<std::chrono::milliseconds> limit) = 0;

  // For a front whose own message loop does the waiting, and calls Run. Returns the token that is
  // ready when any source is; where the messages come to any loop, nothing, and `ready` is called
  // from there.
  virtual std::optional<EventToken> LeaveWaiting(Ready ready) = 0;
};

}  // namespace quarnel
