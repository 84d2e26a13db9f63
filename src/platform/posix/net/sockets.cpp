#include "platform/sockets.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

namespace quarnel {
namespace {

int SocketErrorOf(int systemError) {
  static constexpr std::array<std::pair<int, int>, 17> kNumbers = {{{EWOULDBLOCK, 10035},
                                                                    {EINPROGRESS, 10035},
                                                                    {EALREADY, 10035},
                                                                    {EACCES, 10013},
                                                                    {EMFILE, 10024},
                                                                    {EBADF, 10038},
                                                                    {ENOTSOCK, 10038},
                                                                    {EMSGSIZE, 10040},
                                                                    {EADDRINUSE, 10048},
                                                                    {EADDRNOTAVAIL, 10049},
                                                                    {ENETUNREACH, 10051},
                                                                    {ECONNABORTED, 10053},
                                                                    {ECONNRESET, 10054},
                                                                    {EPIPE, 10054},
                                                                    {ENOTCONN, 10057},
                                                                    {ETIMEDOUT, 10060},
                                                                    {ECONNREFUSED, 10061}}};
  for (const auto& [system, number] : kNumbers) {
    if (system == systemError) return number;
  }
  return systemError == EHOSTUNREACH ? 10065 : socket_error::kInvalid;
}

int ErrorOf(int result) { return result == 0 ? 0 : SocketErrorOf(errno); }

SocketCount CountOf(ssize_t result) {
  if (result >= 0) return {.bytes = result};
  return {.bytes = -1, .error = SocketErrorOf(errno)};
}

sockaddr_in SystemAddress(const Endpoint& endpoint) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(endpoint.port);
  if (!endpoint.address.empty()) inet_aton(endpoint.address.c_str(), &address.sin_addr);
  return address;
}

std::string DotsOf(const in_addr& address) {
  std::array<char, INET_ADDRSTRLEN> text{};
  return inet_ntop(AF_INET, &address, text.data(), text.size());
}

Endpoint EndpointOf(const sockaddr_in& address) {
  return {.address = DotsOf(address.sin_addr), .port = ntohs(address.sin_port)};
}

template <typename Address>
auto* Generic(Address* address) {
  if constexpr (std::is_const_v<Address>) {
    return reinterpret_cast<const sockaddr*>(address);
  } else {
    return reinterpret_cast<sockaddr*>(address);
  }
}

Endpoint EndOf(SocketHandle socket, decltype(getsockname)& which) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  if (which(static_cast<int>(socket), Generic(&address), &length) != 0) return {};
  return EndpointOf(address);
}

int OptionOf(SocketHandle socket, int option) {
  int value = 0;
  socklen_t length = sizeof value;
  getsockopt(static_cast<int>(socket), SOL_SOCKET, option, &value, &length);
  return value;
}

// Where threads that look names up leave their answers; it outlives the sockets.
struct Mailbox {
  std::mutex mutex;
  EventWait* events = nullptr;

  void Post(EventWait::Ready work) {
    const std::lock_guard lock(mutex);
    if (events != nullptr) events->Post(std::move(work));
  }
};

struct Answer {
  std::string address;
  int error = 0;
};

Answer LookUp(const std::string& name) {
  constexpr int kNoSuchHost = 11001;
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(name.c_str(), nullptr, &hints, &found) != 0) return {.error = kNoSuchHost};
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> all(found, freeaddrinfo);
  return {.address = DotsOf(reinterpret_cast<const sockaddr_in*>(all->ai_addr)->sin_addr)};
}

// The events of a socket in the order in which a window would get them as messages.
struct Entry {
  int fd = -1;
  SocketKind kind = SocketKind::kTcp;
  Sockets::OnEvent onEvent;
  std::optional<EventWait::Id> watch;
  bool listening = false;
  bool connecting = false;
  bool connected = false;
  bool wantsWrite = false;  // the next chance to write is to be told
  bool ended = false;       // a read has met the end
  int endError = 0;
};

class PosixSockets : public Sockets {
 public:
  explicit PosixSockets(EventWait& events) : events_(events) { mailbox_->events = &events; }
  ~PosixSockets() override {
    while (!entries_.empty()) Close(entries_.begin()->first);
    const std::lock_guard lock(mailbox_->mutex);
    mailbox_->events = nullptr;
  }

  int Start() override { return 0; }
  void CleanUp() override {}
  int LargestDatagram() const override { return 65467; }

  // Asked for each event, and slow to find out.
  bool CheckInternetConnection() override {
    const auto now = std::chrono::steady_clock::now();
    if (now < networkKnownUntil_) return hasNetwork_;
    networkKnownUntil_ = now + std::chrono::seconds(1);
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return hasNetwork_ = false;
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> all(list, freeifaddrs);
    hasNetwork_ = false;
    for (const ifaddrs* each = list; each != nullptr; each = each->ifa_next) {
      hasNetwork_ = hasNetwork_ || (each->ifa_flags & IFF_UP) != 0;
    }
    return hasNetwork_;
  }

  std::string LocalHostName() const override {
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
  }

  std::optional<std::string> Dotted(std::string_view text) const override {
    in_addr address{};
    if (inet_aton(std::string(text).c_str(), &address) == 0) return std::nullopt;
    return DotsOf(address);
  }

  SocketHandle Open(SocketKind kind) override {
    const int type = kind == SocketKind::kTcp ? SOCK_STREAM : SOCK_DGRAM;
    const int fd = socket(AF_INET, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) return kNoSocket;
    // A port whose last connection has only just ended may be used, as on the other system.
    const int on = 1;
    if (kind == SocketKind::kTcp) setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    return Enter(fd, kind, false);
  }

  bool Select(SocketHandle socket, OnEvent onEvent) override {
    const auto entry = Find(socket);
    if (!entry) return false;
    entry->onEvent = std::move(onEvent);
    entry->wantsWrite = entry->connected || entry->kind == SocketKind::kUdp;
    if (entry->wantsWrite || entry->listening) Watch(entry);
    return true;
  }

  void Unselect(SocketHandle socket) override {
    if (const auto entry = Find(socket)) Forget(*entry);
  }

  int Connect(SocketHandle socket, const Endpoint& to) override {
    const auto entry = Find(socket);
    if (!entry) return socket_error::kNoSocket;
    const sockaddr_in address = SystemAddress(to);
    const int error = ErrorOf(connect(entry->fd, Generic(&address), sizeof address));
    if (error == socket_error::kWouldBlock) {
      entry->connecting = true;
      Watch(entry);
      return error;
    }
    if (error != 0 && error != socket_error::kRefused) return error;
    // What the own machine answers at once comes by way of the queue, as everything does.
    mailbox_->Post([this, entry, error] { Connected(entry, error); });
    return socket_error::kWouldBlock;
  }

  int Bind(SocketHandle socket, const Endpoint& at) override {
    const sockaddr_in address = SystemAddress(at);
    return ErrorOf(bind(static_cast<int>(socket), Generic(&address), sizeof address));
  }

  int Listen(SocketHandle socket, int backlog) override {
    const auto entry = Find(socket);
    if (!entry) return socket_error::kNoSocket;
    // It would choose a port by itself, where the other system asks for one.
    if (LocalEnd(socket).port == 0) return socket_error::kInvalid;
    const int error = ErrorOf(listen(entry->fd, backlog));
    if (error != 0) return error;
    entry->listening = true;
    Watch(entry);
    return 0;
  }

  SocketHandle Accept(SocketHandle socket) override {
    const int fd =
        accept4(static_cast<int>(socket), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    return fd < 0 ? kNoSocket : Enter(fd, SocketKind::kTcp, true);
  }

  SocketCount Send(SocketHandle socket, std::string_view bytes) override {
    return Sent(socket, send(static_cast<int>(socket), bytes.data(), bytes.size(), MSG_NOSIGNAL));
  }

  SocketCount SendTo(SocketHandle socket, std::string_view bytes, const Endpoint& to) override {
    const sockaddr_in address = SystemAddress(to);
    return Sent(socket, sendto(static_cast<int>(socket), bytes.data(), bytes.size(), MSG_NOSIGNAL,
                               Generic(&address), sizeof address));
  }

  SocketCount Receive(SocketHandle socket, size_t most, std::string& bytes) override {
    return Append(bytes, most, [&](char* place) {
      const SocketCount count = CountOf(recv(static_cast<int>(socket), place, most, 0));
      const auto entry = Find(socket);
      if (entry && entry->kind == SocketKind::kTcp && count.error != socket_error::kWouldBlock &&
          count.bytes <= 0) {
        entry->ended = true;
        entry->endError = count.error;
      }
      return count;
    });
  }

  SocketCount ReceiveFrom(SocketHandle socket, size_t most, std::string& bytes,
                          Endpoint& from) override {
    return Append(bytes, most, [&](char* place) {
      sockaddr_in address{};
      socklen_t length = sizeof address;
      const SocketCount count =
          CountOf(recvfrom(static_cast<int>(socket), place, most, 0, Generic(&address), &length));
      if (count.bytes >= 0) from = EndpointOf(address);
      return count;
    });
  }

  Endpoint LocalEnd(SocketHandle socket) const override { return EndOf(socket, getsockname); }
  Endpoint RemoteEnd(SocketHandle socket) const override { return EndOf(socket, getpeername); }
  SocketKind KindOf(SocketHandle socket) const override {
    return OptionOf(socket, SO_TYPE) == SOCK_STREAM ? SocketKind::kTcp : SocketKind::kUdp;
  }
  int ReceiveBufferSize(SocketHandle socket) const override { return OptionOf(socket, SO_RCVBUF); }
  int SendBufferSize(SocketHandle socket) const override { return OptionOf(socket, SO_SNDBUF); }
  int SetBroadcast(SocketHandle socket, bool on) override {
    const int value = on ? 1 : 0;
    return ErrorOf(
        setsockopt(static_cast<int>(socket), SOL_SOCKET, SO_BROADCAST, &value, sizeof value));
  }

  void ShutDown(SocketHandle socket, bool receivingToo) override {
    shutdown(static_cast<int>(socket), receivingToo ? SHUT_RDWR : SHUT_WR);
  }

  void Close(SocketHandle socket) override {
    const auto entry = Find(socket);
    if (!entry) return;
    Forget(*entry);
    entries_.erase(socket);
    close(std::exchange(entry->fd, -1));
  }

  void PostWrite(SocketHandle socket) override {
    const auto entry = Find(socket);
    if (entry) mailbox_->Post([entry] { Tell(entry, SocketEvent::kWrite); });
  }

  uint32_t Resolve(const std::string& name, OnResolved onResolved) override {
    const uint32_t request = ++lastRequest_;
    try {
      // The system offers no other way that takes all that it is configured to ask.
      std::thread([mailbox = mailbox_, request, name, onResolved = std::move(onResolved)] {
        const Answer answer = LookUp(name);
        mailbox->Post([=] { onResolved(request, name, answer.address, answer.error); });
      }).detach();
    } catch (const std::exception&) {
      return 0;
    }
    return request;
  }

 private:
  using EntryRef = std::shared_ptr<Entry>;

  EntryRef Find(SocketHandle socket) const {
    const auto found = entries_.find(socket);
    return found == entries_.end() ? nullptr : found->second;
  }

  SocketHandle Enter(int fd, SocketKind kind, bool connected) {
    entries_[fd] = std::make_shared<Entry>(
        Entry{.fd = fd, .kind = kind, .connected = connected, .wantsWrite = connected});
    return fd;
  }

  static EventInterest InterestOf(const Entry& entry) {
    return {.read = !entry.connecting, .write = entry.connecting || entry.wantsWrite};
  }

  void Watch(const EntryRef& entry) {
    if (!entry->onEvent) return;
    if (entry->watch) return events_.Change(*entry->watch, InterestOf(*entry));
    entry->watch =
        events_.Add(EventToken(entry->fd), InterestOf(*entry), [this, entry] { Ready(entry); });
  }

  void Forget(Entry& entry) {
    entry.onEvent = nullptr;
    if (entry.watch) events_.Remove(*std::exchange(entry.watch, std::nullopt));
  }

  static void Tell(const EntryRef& entry, SocketEvent event, int error = 0) {
    if (const OnEvent tell = entry->onEvent) tell(event, error);
  }

  void Connected(const EntryRef& entry, int error) {
    entry->connecting = false;
    entry->connected = entry->wantsWrite = error == 0;
    if (error == 0) {
      Watch(entry);
    } else if (entry->watch) {
      events_.Remove(*std::exchange(entry->watch, std::nullopt));
    }
    Tell(entry, SocketEvent::kConnect, error);
  }

  void Ready(const EntryRef& entry) {
    if (entry->listening) return Tell(entry, SocketEvent::kAccept);
    if (entry->connecting) {
      const int error = OptionOf(entry->fd, SO_ERROR);
      return Connected(entry, error == 0 ? 0 : SocketErrorOf(error));
    }
    pollfd state{.fd = entry->fd, .events = POLLIN, .revents = 0};
    if (entry->wantsWrite) {
      state.events |= POLLOUT;
      poll(&state, 1, 0);
      if ((state.revents & (POLLOUT | POLLERR)) != 0) {
        entry->wantsWrite = false;
        Watch(entry);
        Tell(entry, SocketEvent::kWrite);
      }
      if ((state.revents & ~POLLOUT) == 0 || !entry->watch) return;
    }
    Tell(entry, SocketEvent::kRead);
    if (!entry->ended || !entry->watch) return;
    // Its end stays ready for ever, and is told once.
    events_.Remove(*std::exchange(entry->watch, std::nullopt));
    Tell(entry, SocketEvent::kClose, entry->endError);
  }

  SocketCount Sent(SocketHandle socket, ssize_t result) {
    const SocketCount count = CountOf(result);
    const auto entry = Find(socket);
    if (entry && count.error == socket_error::kWouldBlock && !entry->connecting) {
      entry->wantsWrite = true;
      Watch(entry);
    }
    return count;
  }

  template <typename Read>
  static SocketCount Append(std::string& bytes, size_t most, Read&& read) {
    const size_t before = bytes.size();
    bytes.resize(before + most);
    const SocketCount count = read(bytes.data() + before);
    bytes.resize(before + static_cast<size_t>(std::max<int64_t>(count.bytes, 0)));
    return count;
  }

  EventWait& events_;
  std::shared_ptr<Mailbox> mailbox_ = std::make_shared<Mailbox>();
  std::map<SocketHandle, EntryRef> entries_;
  uint32_t lastRequest_ = 0;
  std::chrono::steady_clock::time_point networkKnownUntil_;
  bool hasNetwork_ = false;
};

}  // namespace

std::unique_ptr<Sockets> MakeSockets(EventWait& events) {
  return std::make_unique<PosixSockets>(events);
}

}  // namespace quarnel
