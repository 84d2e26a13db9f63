#include "platform/sockets.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>
#include <vector>

#include "platform/windows/win32.h"

namespace quarnel {
namespace {

constexpr UINT kResolveMessage = WM_APP + 1;
// Each selection has a message of its own: the system may give the handle of a closed socket to the
// next one, while messages of the first are still on their way.
constexpr UINT kFirstSocketMessage = WM_APP + 2;
constexpr UINT kSocketMessages = 0x3000;
constexpr size_t kHostBuffer = 1024;

SOCKET System(SocketHandle socket) { return static_cast<SOCKET>(socket); }

int ErrorOf(int result) { return result == 0 ? 0 : WSAGetLastError(); }

SocketCount CountOf(int result) {
  if (result >= 0) return {.bytes = result};
  return {.bytes = -1, .error = WSAGetLastError()};
}

sockaddr_in SystemAddress(const Endpoint& endpoint) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(endpoint.port);
  if (!endpoint.address.empty()) address.sin_addr.s_addr = inet_addr(endpoint.address.c_str());
  return address;
}

Endpoint EndpointOf(const sockaddr_in& address) {
  return {.address = inet_ntoa(address.sin_addr), .port = ntohs(address.sin_port)};
}

template <typename Function>
Endpoint EndOf(SocketHandle socket, Function which) {
  sockaddr_in address{};
  int length = sizeof address;
  if (which(System(socket), reinterpret_cast<sockaddr*>(&address), &length) != 0) return {};
  return EndpointOf(address);
}

int OptionOf(SocketHandle socket, int option) {
  int value = 0;
  int length = sizeof value;
  getsockopt(System(socket), SOL_SOCKET, option, reinterpret_cast<char*>(&value), &length);
  return value;
}

class WindowsSockets : public Sockets {
 public:
  explicit WindowsSockets(EventWait& events) : events_(events) {}
  ~WindowsSockets() override {
    while (!listeners_.empty()) Close(listeners_.begin()->first);
    for (const auto& entry : requests_) WSACancelAsyncRequest(entry.second->handle);
    requests_.clear();
    DestroyUnusedWindow();
    while (started_ > 0) CleanUp();
  }

  int Start() override {
    constexpr WORD kVersion = 257;
    WSADATA data{};
    const int error = WSAStartup(kVersion, &data);
    if (error != 0) return error;
    ++started_;
    largestDatagram_ = data.iMaxUdpDg;
    return 0;
  }
  void CleanUp() override {
    if (started_ == 0) return;
    --started_;
    WSACleanup();
  }
  int LargestDatagram() const override { return largestDatagram_; }
  // The machine's own interface is always there.
  bool CheckInternetConnection() override { return true; }

  std::string LocalHostName() const override {
    std::array<char, 256> name{};
    gethostname(name.data(), static_cast<int>(name.size() - 1));
    return name.data();
  }

  std::optional<std::string> Dotted(std::string_view text) const override {
    if (text.empty()) return std::nullopt;
    in_addr address{};
    address.s_addr = inet_addr(std::string(text).c_str());
    if (address.s_addr == INADDR_NONE && text != "255.255.255.255") return std::nullopt;
    return inet_ntoa(address);
  }

  SocketHandle Open(SocketKind kind) override {
    const bool tcp = kind == SocketKind::kTcp;
    return static_cast<SocketHandle>(
        socket(AF_INET, tcp ? SOCK_STREAM : SOCK_DGRAM, tcp ? int{IPPROTO_TCP} : int{IPPROTO_UDP}));
  }

  bool Select(SocketHandle socket, OnEvent onEvent) override {
    if (!MakeWindow()) return false;
    const UINT message = kFirstSocketMessage + selections_++ % kSocketMessages;
    listeners_[socket] = {message, std::make_shared<OnEvent>(std::move(onEvent))};
    if (WSAAsyncSelect(System(socket), window_, message,
                       FD_READ | FD_WRITE | FD_ACCEPT | FD_CONNECT | FD_CLOSE) == 0) {
      return true;
    }
    Unselect(socket);
    return false;
  }

  void Unselect(SocketHandle socket) override {
    if (listeners_.erase(socket) == 0) return;
    WSAAsyncSelect(System(socket), window_, 0, 0);
    DestroyUnusedWindow();
  }

  int Connect(SocketHandle socket, const Endpoint& to) override {
    const sockaddr_in address = SystemAddress(to);
    return ErrorOf(
        connect(System(socket), reinterpret_cast<const sockaddr*>(&address), sizeof address));
  }
  int Bind(SocketHandle socket, const Endpoint& at) override {
    const sockaddr_in address = SystemAddress(at);
    return ErrorOf(
        bind(System(socket), reinterpret_cast<const sockaddr*>(&address), sizeof address));
  }
  int Listen(SocketHandle socket, int backlog) override {
    return ErrorOf(listen(System(socket), backlog));
  }
  SocketHandle Accept(SocketHandle socket) override {
    return static_cast<SocketHandle>(accept(System(socket), nullptr, nullptr));
  }

  SocketCount Send(SocketHandle socket, std::string_view bytes) override {
    return CountOf(send(System(socket), bytes.data(), static_cast<int>(bytes.size()), 0));
  }
  SocketCount SendTo(SocketHandle socket, std::string_view bytes, const Endpoint& to) override {
    const sockaddr_in address = SystemAddress(to);
    return CountOf(sendto(System(socket), bytes.data(), static_cast<int>(bytes.size()), 0,
                          reinterpret_cast<const sockaddr*>(&address), sizeof address));
  }
  SocketCount Receive(SocketHandle socket, size_t most, std::string& bytes) override {
    return Append(bytes, most, [&](char* place) {
      return CountOf(recv(System(socket), place, static_cast<int>(most), 0));
    });
  }
  SocketCount ReceiveFrom(SocketHandle socket, size_t most, std::string& bytes,
                          Endpoint& from) override {
    return Append(bytes, most, [&](char* place) {
      sockaddr_in address{};
      int length = sizeof address;
      const SocketCount count = CountOf(recvfrom(System(socket), place, static_cast<int>(most), 0,
                                                 reinterpret_cast<sockaddr*>(&address), &length));
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
    return ErrorOf(setsockopt(System(socket), SOL_SOCKET, SO_BROADCAST,
                              reinterpret_cast<const char*>(&value), sizeof value));
  }
  void ShutDown(SocketHandle socket, bool receivingToo) override {
    shutdown(System(socket), receivingToo ? SD_BOTH : SD_SEND);
  }
  void Close(SocketHandle socket) override {
    Unselect(socket);
    closesocket(System(socket));
  }
  void PostWrite(SocketHandle socket) override {
    const auto found = listeners_.find(socket);
    if (found == listeners_.end()) return;
    PostMessageW(window_, found->second.message, static_cast<WPARAM>(socket),
                 MAKELPARAM(static_cast<int>(SocketEvent::kWrite), 0));
  }

  uint32_t Resolve(const std::string& name, OnResolved onResolved) override {
    if (!MakeWindow()) return 0;
    auto request = std::make_shared<Request>();
    request->name = name;
    request->onResolved = std::move(onResolved);
    request->handle =
        WSAAsyncGetHostByName(window_, kResolveMessage, request->name.c_str(),
                              request->buffer.data(), static_cast<int>(request->buffer.size()));
    if (request->handle == nullptr) {
      DestroyUnusedWindow();
      return 0;
    }
    const auto number = static_cast<uint32_t>(reinterpret_cast<ULONG_PTR>(request->handle));
    requests_[number] = request;
    return number;
  }

 private:
  struct Listener {
    UINT message;
    std::shared_ptr<OnEvent> onEvent;
  };
  struct Request {
    HANDLE handle = nullptr;
    std::string name;
    std::vector<char> buffer = std::vector<char>(kHostBuffer);
    OnResolved onResolved;
  };

  bool MakeWindow() {
    if (window_ != nullptr) return true;
    window_ = CreateWindowExW(0, L"STATIC", L"SOCKET_WINDOW", 0, 0, 0, 0, 0, nullptr, nullptr,
                              GetModuleHandleW(nullptr), nullptr);
    if (window_ == nullptr) return false;
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    former_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    return true;
  }

  void DestroyUnusedWindow() {
    if (window_ == nullptr || !listeners_.empty() || !requests_.empty()) return;
    SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(former_));
    DestroyWindow(std::exchange(window_, nullptr));
  }

  // The system's own message loops may bring it; what follows may throw, and waits for one of ours.
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM data) {
    auto* const self = reinterpret_cast<WindowsSockets*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message >= kFirstSocketMessage && message < kFirstSocketMessage + kSocketMessages) {
      self->Tell(message, static_cast<SocketHandle>(wide), static_cast<SocketEvent>(LOWORD(data)),
                 HIWORD(data));
      return 0;
    }
    if (message == kResolveMessage) {
      self->Resolved(static_cast<uint32_t>(wide), HIWORD(data));
      return 0;
    }
    return CallWindowProcW(self->former_, window, message, wide, data);
  }

  void Tell(UINT message, SocketHandle socket, SocketEvent event, int error) {
    const auto found = listeners_.find(socket);
    if (found == listeners_.end() || found->second.message != message) return;
    events_.Post([this, socket, event, error, listener = found->second.onEvent] {
      // The socket may have gone since, and another have its handle.
      const auto now = listeners_.find(socket);
      if (now != listeners_.end() && now->second.onEvent == listener) (*listener)(event, error);
    });
  }

  void Resolved(uint32_t number, int error) {
    const auto found = requests_.find(number);
    if (found == requests_.end()) return;
    const std::shared_ptr<Request> request = found->second;
    requests_.erase(found);
    DestroyUnusedWindow();
    std::string address;
    if (error == 0) {
      const auto* const host = reinterpret_cast<const hostent*>(request->buffer.data());
      in_addr first{};
      std::copy_n(host->h_addr_list[0], sizeof first, reinterpret_cast<char*>(&first));
      address = inet_ntoa(first);
    }
    events_.Post([request, number, address, error] {
      request->onResolved(number, request->name, address, error);
    });
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
  HWND window_ = nullptr;
  WNDPROC former_ = nullptr;
  std::map<SocketHandle, Listener> listeners_;
  UINT selections_ = 0;
  std::map<uint32_t, std::shared_ptr<Request>> requests_;
  int started_ = 0;
  int largestDatagram_ = 0;
};

}  // namespace

std::unique_ptr<Sockets> MakeSockets(EventWait& events) {
  return std::make_unique<WindowsSockets>(events);
}

}  // namespace quarnel
