#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/event_wait.h"

namespace quarnel {

enum class SocketKind { kTcp, kUdp };

// What is told about a socket, by the numbers under which the system tells it.
enum class SocketEvent { kRead = 1, kWrite = 2, kAccept = 8, kConnect = 16, kClose = 32 };

// The numbers of errors are the same on every system; 0 is none.
namespace socket_error {
inline constexpr int kInvalid = 10022;
inline constexpr int kWouldBlock = 10035;
inline constexpr int kNoSocket = 10038;
inline constexpr int kInUse = 10048;
inline constexpr int kReset = 10054;
inline constexpr int kRefused = 10061;
inline constexpr int kNotReady = 10091;
inline constexpr int kWrongVersion = 10092;
}  // namespace socket_error

using SocketHandle = std::intptr_t;
inline constexpr SocketHandle kNoSocket = -1;

// An address in dots and a port.
struct Endpoint {
  std::string address;
  uint16_t port = 0;
  bool operator==(const Endpoint&) const = default;
};

// How many bytes went, or why none did.
struct SocketCount {
  int64_t bytes = 0;
  int error = 0;
};

// TCP and UDP over IPv4. Nothing blocks: events of selected sockets and the answers of look-ups
// come while events are processed, on the thread of the EventWait. Where nothing else is said, what
// is returned is an error's number. Data, an end or a new connection that nobody takes is told
// again.
class Sockets {
 public:
  using OnEvent = std::function<void(SocketEvent event, int error)>;
  // `name` is the one that was asked for, `address` its first address.
  using OnResolved = std::function<void(uint32_t request, const std::string& name,
                                        const std::string& address, int error)>;
  virtual ~Sockets() = default;

  virtual int Start() = 0;
  virtual void CleanUp() = 0;
  virtual int LargestDatagram() const = 0;
  // Whether there is any interface, the machine's own included.
  virtual bool CheckInternetConnection() = 0;
  virtual std::string LocalHostName() const = 0;
  // The address that a text in dots stands for; nothing for a name.
  virtual std::optional<std::string> Dotted(std::string_view text) const = 0;

  virtual SocketHandle Open(SocketKind kind) = 0;  // kNoSocket when the system has none left
  // Its events from now on; a connected or a datagram socket tells first that it can be written.
  virtual bool Select(SocketHandle socket, OnEvent onEvent) = 0;
  virtual void Unselect(SocketHandle socket) = 0;
  // kWouldBlock where kConnect follows.
  virtual int Connect(SocketHandle socket, const Endpoint& to) = 0;
  virtual int Bind(SocketHandle socket, const Endpoint& at) = 0;  // no address is any
  virtual int Listen(SocketHandle socket, int backlog) = 0;
  virtual SocketHandle Accept(SocketHandle socket) = 0;
  virtual SocketCount Send(SocketHandle socket, std::string_view bytes) = 0;
  virtual SocketCount SendTo(SocketHandle socket, std::string_view bytes, const Endpoint& to) = 0;
  // Appends at most `most` bytes to `bytes`. Of a datagram the rest is lost; `from` is its sender.
  virtual SocketCount Receive(SocketHandle socket, size_t most, std::string& bytes) = 0;
  virtual SocketCount ReceiveFrom(SocketHandle socket, size_t most, std::string& bytes,
                                  Endpoint& from) = 0;
  // Empty where there is none.
  virtual Endpoint LocalEnd(SocketHandle socket) const = 0;
  virtual Endpoint RemoteEnd(SocketHandle socket) const = 0;
  virtual SocketKind KindOf(SocketHandle socket) const = 0;
  virtual int ReceiveBufferSize(SocketHandle socket) const = 0;
  virtual int SendBufferSize(SocketHandle socket) const = 0;
  virtual int SetBroadcast(SocketHandle socket, bool on) = 0;
  virtual void ShutDown(SocketHandle socket, bool receivingToo) = 0;
  virtual void Close(SocketHandle socket) = 0;
  // Tells kWrite by way of the queue, as if the system did.
  virtual void PostWrite(SocketHandle socket) = 0;

  // The request's number, 0 when none could be made.
  virtual uint32_t Resolve(const std::string& name, OnResolved onResolved) = 0;
};

// Events are told by way of `events`, which must live longer.
std::unique_ptr<Sockets> MakeSockets(EventWait& events);

}  // namespace quarnel
