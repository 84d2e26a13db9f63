#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "controls/control.h"
#include "net/socket_support.h"
#include "net/socket_value.h"

namespace quarnel {

enum class SocketProtocol { kTcp = 0, kUdp = 1 };

enum class SocketState {
  kClosed = 0,
  kListening = 2,
  kResolvingHost = 4,
  kHostResolved = 5,
  kConnecting = 6,
  kConnected = 7,
  kClosing = 8,
  kError = 9,
};

// A socket whose events come while events are processed. An error that comes that way leads to
// state 9 and closes the handle, and nothing is raised.
class CSocket {
 public:
  // Raises RuntimeError where the system has no sockets.
  explicit CSocket(SocketSupport& support);
  ~CSocket();
  CSocket(const CSocket&) = delete;
  CSocket& operator=(const CSocket&) = delete;

  // Raises RuntimeError when the handle is no socket any more; what could not go at once follows.
  void SendData(const SocketValue& data);
  // The data that has come, or its first `length` characters; Get takes it away.
  SocketValue PeekData(SocketType type = SocketType::kNone, size_t length = 0);
  void Listen();
  SocketValue GetData(SocketType type = SocketType::kNone, size_t length = 0);
  // All that has come, into a text whose room is used for what comes next.
  void TakeData(std::string& bytes);
  // To a name, or an address in dots.
  void Connect(std::string_view host, int32_t port);
  void CloseSocket();
  // An empty argument, or 0, leaves what is set.
  void Bind(int32_t port, std::string_view address = {});
  void Accept(SocketHandle requestID);

  SocketState State() const { return state_; }
  SocketHandle Handle() const { return handle_; }
  int32_t RemotePort() const { return remotePort_; }
  void SetRemotePort(int32_t port) { remotePort_ = port; }
  const std::string& RemoteHostIP() const { return remoteHostIP_; }
  const std::string& RemoteHost() const { return remoteHost_; }
  void SetRemoteHost(std::string_view host);
  SocketProtocol Protocol() const { return protocol_; }
  void SetProtocol(SocketProtocol protocol) { protocol_ = protocol; }
  int32_t LocalPort() const { return localPort_; }
  void SetLocalPort(int32_t port) { localPort_ = port; }
  const std::string& LocalIP() const { return localIP_; }
  std::string LocalHostName() const { return support_.sockets().LocalHostName(); }
  int32_t BytesReceived() const { return bytesReceived_; }

  // Makes the system's socket and registers it; its handle.
  SocketHandle vbSocket();

  Handler OnClose;
  Handler OnConnect;
  std::function<void(SocketHandle requestID)> OnConnectionRequest;
  std::function<void(int32_t bytes)> OnDataArrival;
  Handler OnError;  // nothing raises it
  Handler OnSendComplete;
  std::function<void(int32_t sent, int32_t remaining)> OnSendProgress;

 private:
  friend class SocketSupport;
  enum class Purpose { kConnect = 0, kSend = 1 };

  void PostSocketEvent(SocketEvent event, int error);
  void PostGetHostEvent(uint32_t request, const std::string& address, const std::string& name,
                        int error);
  // A handler may end this object; then nothing of it may be touched.
  template <typename Event, typename... Arguments>
  bool Raise(const Event& event, Arguments... arguments);

  Sockets& system() { return support_.sockets(); }
  bool Logging(std::string_view label, const std::function<void()>& procedure);
  bool EnsureSocket();
  void GetWinsockBuffers();
  void CloseHandle();
  void TakeLocalEnd();
  void ConnectTo(const std::string& address);
  int64_t Receive();
  bool ReceiveAndRaise();
  void FinishClose();
  int SendBufferedData();
  std::string Taken(size_t length) const;

  SocketSupport& support_;
  Purpose purpose_ = Purpose::kConnect;
  SocketProtocol protocol_ = SocketProtocol::kTcp;
  SocketState state_ = SocketState::kClosed;
  int32_t bytesReceived_ = 0;
  std::string localIP_;
  int32_t localPort_ = 0;
  std::string remoteHost_;
  std::string remoteHostIP_;
  int32_t remotePort_ = 0;
  SocketHandle handle_ = kNoSocket;
  uint32_t request_ = 0;
  std::string sendBuffer_;
  std::string receiveBuffer_;
  int sendBufferSize_ = 0;
  int receiveBufferSize_ = 0;
  int largestDatagram_ = 0;
  bool bound_ = false;
  bool broadcasts_ = false;
  // Cleared by the destructor while one of its handlers runs.
  bool* alive_ = nullptr;
};

}  // namespace quarnel
