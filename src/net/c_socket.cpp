#include "net/c_socket.h"

#include <algorithm>
#include <utility>

namespace quarnel {
namespace {

constexpr int kBacklog = 5;
constexpr std::string_view kWrongState =
    "Wrong protocol or connection state for the requested transaction or request.";

void ThrowIf(int error) {
  if (error != 0) throw RuntimeError(ErrorNumber::kDeviceError, {}, error);
}

}  // namespace

CSocket::CSocket(SocketSupport& support)
    : support_(support), largestDatagram_(support.InitWinsockService()) {}

CSocket::~CSocket() {
  if (alive_ != nullptr) *alive_ = false;
  if (handle_ != kNoSocket) CloseHandle();
  support_.ForgetRequests(*this);
  support_.CleanupWinsock();
}

template <typename Event, typename... Arguments>
bool CSocket::Raise(const Event& event, Arguments... arguments) {
  if (!event) return true;
  bool alive = true;
  bool* const outer = std::exchange(alive_, &alive);
  // It may put another one in its place.
  const Event handler = event;
  struct Leave {
    CSocket* socket;
    bool& alive;
    bool* outer;
    ~Leave() {
      if (alive) {
        socket->alive_ = outer;
      } else if (outer != nullptr) {
        *outer = false;
      }
    }
  } leave{this, alive, outer};
  handler(arguments...);
  return alive;
}

bool CSocket::Logging(std::string_view label, const std::function<void()>& procedure) {
  return Reporting(support_.log(), label, procedure);
}

// ---- the system's socket -----------------------------------------------------------------------

SocketHandle CSocket::vbSocket() {
  try {
    handle_ =
        system().Open(protocol_ == SocketProtocol::kTcp ? SocketKind::kTcp : SocketKind::kUdp);
    if (handle_ == kNoSocket) throw RuntimeError(ErrorNumber::kDeviceError);
    if (support_.RegisterSocket(handle_, *this)) return handle_;
    system().Close(std::exchange(handle_, kNoSocket));
    throw RuntimeError(ErrorNumber::kDeviceError);
  } catch (const RuntimeError& error) {
    support_.log().NoteInPassing("vbSocket", error);
    throw;
  }
}

bool CSocket::EnsureSocket() {
  if (handle_ != kNoSocket) return true;
  if (!IgnoringErrors([&] { vbSocket(); })) return false;
  GetWinsockBuffers();
  return true;
}

void CSocket::GetWinsockBuffers() {
  const bool tcp = protocol_ == SocketProtocol::kTcp;
  receiveBufferSize_ = tcp ? system().ReceiveBufferSize(handle_) : largestDatagram_;
  sendBufferSize_ = tcp ? system().SendBufferSize(handle_) : largestDatagram_;
}

void CSocket::CloseHandle() {
  support_.UnregisterSocket(handle_);
  system().Close(std::exchange(handle_, kNoSocket));
  bound_ = false;
  broadcasts_ = false;
}

void CSocket::TakeLocalEnd() {
  const Endpoint local = system().LocalEnd(handle_);
  localIP_ = local.address;
  localPort_ = local.port;
}

// ---- what a client calls -----------------------------------------------------------------------

void CSocket::Connect(std::string_view host, int32_t port) {
  Logging("Connect", [&] {
    if (!EnsureSocket()) return;
    remoteHost_ = host;
    remotePort_ = port;
    purpose_ = Purpose::kConnect;
    if (const auto address = system().Dotted(host)) return ConnectTo(*address);
    state_ = SocketState::kResolvingHost;
    request_ = support_.ResolveHost(remoteHost_, *this);
    if (request_ == 0) CloseHandle();
  });
}

void CSocket::ConnectTo(const std::string& address) {
  remoteHostIP_ = address;
  const int error = system().Connect(handle_, {address, UnsignedToInteger(remotePort_)});
  if (error == socket_error::kWouldBlock) state_ = SocketState::kConnecting;
}

void CSocket::Bind(int32_t port, std::string_view address) {
  Logging("Bind", [&] {
    if (!EnsureSocket()) return;
    if (port != 0) localPort_ = port;
    if (!address.empty()) localIP_ = address;
    bound_ = system().Bind(handle_, {localIP_, UnsignedToInteger(localPort_)}) == 0;
  });
}

void CSocket::Listen() {
  Logging("listen", [&] {
    if (!EnsureSocket()) return;
    if (!bound_) Bind(0);
    const bool listens = system().Listen(handle_, kBacklog) == 0;
    state_ = listens ? SocketState::kListening : SocketState::kError;
  });
}

void CSocket::Accept(SocketHandle requestID) {
  Logging("Accept", [&] {
    handle_ = requestID;
    TakeLocalEnd();
    const Endpoint remote = system().RemoteEnd(handle_);
    remoteHostIP_ = remoteHost_ = remote.address;
    remotePort_ = remote.port;
    protocol_ =
        system().KindOf(handle_) == SocketKind::kTcp ? SocketProtocol::kTcp : SocketProtocol::kUdp;
    GetWinsockBuffers();
    if (support_.RegisterSocket(handle_, *this)) state_ = SocketState::kConnected;
  });
}

void CSocket::CloseSocket() {
  Logging("CloseSocket", [&] {
    if (handle_ == kNoSocket) return;
    if (state_ == SocketState::kConnected) {
      state_ = SocketState::kClosing;
      system().ShutDown(handle_, false);
    } else {
      CloseHandle();
      state_ = SocketState::kClosed;
    }
  });
}

void CSocket::SetRemoteHost(std::string_view host) {
  Logging("RemoteHost", [&] {
    remoteHost_ = host;
    const auto address = system().Dotted(host);
    if (!address || protocol_ != SocketProtocol::kUdp) return;
    remoteHostIP_ = *address;
    if (!EnsureSocket()) return;
    const bool wanted = address->ends_with(".255");
    if (wanted == broadcasts_) return;
    ThrowIf(system().SetBroadcast(handle_, wanted));
    broadcasts_ = wanted;
  });
}

// ---- data --------------------------------------------------------------------------------------

void CSocket::SendData(const SocketValue& data) {
  if (protocol_ == SocketProtocol::kUdp) {
    if (!EnsureSocket()) return;
  } else if (handle_ == kNoSocket) {
    return;
  }
  if (!std::holds_alternative<std::monostate>(data)) sendBuffer_ = BytesOf(data);
  if (SendBufferedData() == socket_error::kNoSocket) {
    throw RuntimeError(ErrorNumber::kInvalidCall, kWrongState, socket_error::kNoSocket);
  }
}

// Returns the error with which it did not go.
int CSocket::SendBufferedData() {
  SocketCount count;
  if (protocol_ == SocketProtocol::kTcp) {
    count = system().Send(handle_, sendBuffer_);
  } else if (!remoteHostIP_.empty()) {
    count = system().SendTo(handle_, sendBuffer_, {remoteHostIP_, UnsignedToInteger(remotePort_)});
  } else {
    purpose_ = Purpose::kSend;
    request_ = support_.ResolveHost(remoteHost_, *this);
    return 0;
  }
  if (count.bytes < 0) return count.error;
  sendBuffer_.erase(0, static_cast<size_t>(count.bytes));
  if (sendBuffer_.empty()) system().PostWrite(handle_);
  Raise(OnSendProgress, static_cast<int32_t>(count.bytes),
        static_cast<int32_t>(sendBuffer_.size()));
  return 0;
}

std::string CSocket::Taken(size_t length) const {
  return receiveBuffer_.substr(0, length == 0 ? std::string::npos : length);
}

SocketValue CSocket::PeekData(SocketType type, size_t length) {
  bytesReceived_ = static_cast<int32_t>(receiveBuffer_.size());
  return ValueFrom(Taken(length), type);
}

SocketValue CSocket::GetData(SocketType type, size_t length) {
  const std::string taken = Taken(length);
  receiveBuffer_.erase(0, taken.size());
  bytesReceived_ = static_cast<int32_t>(receiveBuffer_.size());
  return ValueFrom(taken, type);
}

void CSocket::TakeData(std::string& bytes) {
  bytes.clear();
  bytes.swap(receiveBuffer_);
  bytesReceived_ = 0;
}

int64_t CSocket::Receive() {
  const auto most = static_cast<size_t>(std::max(receiveBufferSize_, 1));
  int64_t count = 0;
  if (protocol_ == SocketProtocol::kTcp) {
    count = system().Receive(handle_, most, receiveBuffer_).bytes;
  } else {
    Endpoint from;
    count = system().ReceiveFrom(handle_, most, receiveBuffer_, from).bytes;
    if (count >= 0) {
      remoteHost_ = remoteHostIP_ = from.address;
      remotePort_ = from.port;
    }
  }
  if (count > 0) bytesReceived_ += static_cast<int32_t>(count);
  return count;
}

// False when there was nothing, or nobody is left to read more.
bool CSocket::ReceiveAndRaise() {
  if (Receive() <= 0) return false;
  return Raise(OnDataArrival, static_cast<int32_t>(receiveBuffer_.size())) && handle_ != kNoSocket;
}

// ---- events ------------------------------------------------------------------------------------

void CSocket::PostSocketEvent(SocketEvent event, int error) {
  if (error >= 1) {
    state_ = SocketState::kError;
    return CloseHandle();
  }
  switch (event) {
    case SocketEvent::kRead:
      ReceiveAndRaise();
      return;
    case SocketEvent::kWrite:
      if (sendBuffer_.empty()) {
        Raise(OnSendComplete);
      } else {
        SendBufferedData();
      }
      return;
    case SocketEvent::kAccept:
      if (const SocketHandle accepted = system().Accept(handle_); accepted != kNoSocket) {
        Raise(OnConnectionRequest, accepted);
      }
      return;
    case SocketEvent::kConnect:
      TakeLocalEnd();
      state_ = SocketState::kConnected;
      Raise(OnConnect);
      return;
    case SocketEvent::kClose:
      return FinishClose();
  }
}

// What the system still holds comes before the end.
void CSocket::FinishClose() {
  bool alive = true;
  bool* const outer = std::exchange(alive_, &alive);
  while (ReceiveAndRaise()) continue;
  if (!alive) {
    if (outer != nullptr) *outer = false;
    return;
  }
  alive_ = outer;
  if (handle_ == kNoSocket) return;
  if (state_ != SocketState::kClosing) {
    state_ = SocketState::kClosing;
    if (!sendBuffer_.empty()) SendBufferedData();
  }
  CloseHandle();
  state_ = SocketState::kClosed;
  Raise(OnClose);
}

void CSocket::PostGetHostEvent(uint32_t request, const std::string& address,
                               const std::string& name, int error) {
  std::optional<std::string> resolved = address;
  if (error >= 1) resolved = system().Dotted(name);
  if (!resolved) {
    state_ = SocketState::kError;
    return;
  }
  if (request != request_) return;
  state_ = SocketState::kHostResolved;
  remoteHost_ = name;
  remoteHostIP_ = *resolved;
  if (purpose_ == Purpose::kConnect) {
    ConnectTo(remoteHostIP_);
  } else {
    SendBufferedData();
  }
}

}  // namespace quarnel
