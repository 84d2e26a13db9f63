#include "net/socket_support.h"

#include <array>
#include <utility>

#include "net/c_socket.h"

namespace quarnel {
namespace {

constexpr std::array<std::pair<int, std::string_view>, 3> kStartErrors = {{
    {socket_error::kNotReady,
     "The underlying network subsystem is not ready for network communication."},
    {socket_error::kWrongVersion,
     "The version of Windows Sockets API support requested is not provided by this particular "
     "Windows Sockets implementation."},
    {socket_error::kInvalid,
     "The Windows Sockets version specified by the application is not supported by this DLL."},
}};

}  // namespace

std::string_view StartFailureText(int error) {
  for (const auto& [number, reason] : kStartErrors) {
    if (number == error) return reason;
  }
  return {};
}

int SocketSupport::InitWinsockService() {
  if (started_) return largestDatagram_;
  if (const int error = sockets_.Start(); error != 0) {
    try {
      throw RuntimeError(ErrorNumber::kDeviceError, StartFailureText(error), error);
    } catch (const RuntimeError& failure) {
      log_.NoteInPassing("InitWinsockService", failure);
      throw;
    }
  }
  started_ = true;
  return largestDatagram_ = sockets_.LargestDatagram();
}

void SocketSupport::CleanupWinsock() {
  if (!started_ || !byHandle_.empty()) return;
  sockets_.CleanUp();
  started_ = false;
}

bool SocketSupport::RegisterSocket(SocketHandle handle, CSocket& object) {
  byHandle_[handle] = &object;
  if (sockets_.Select(handle, [this, handle](SocketEvent event, int error) {
        Dispatch(handle, event, error);
      })) {
    return true;
  }
  byHandle_.erase(handle);
  return false;
}

void SocketSupport::UnregisterSocket(SocketHandle handle) {
  sockets_.Unselect(handle);
  byHandle_.erase(handle);
}

uint32_t SocketSupport::ResolveHost(const std::string& host, CSocket& object) {
  ForgetRequests(object);
  const uint32_t request = sockets_.Resolve(
      host, [this](uint32_t number, const std::string& name, const std::string& address,
                   int error) { DispatchAnswer(number, name, address, error); });
  if (request != 0) byRequest_[request] = &object;
  return request;
}

void SocketSupport::ForgetRequests(const CSocket& object) {
  std::erase_if(byRequest_, [&](const auto& entry) { return entry.second == &object; });
}

void SocketSupport::Dispatch(SocketHandle handle, SocketEvent event, int error) {
  if (!sockets_.CheckInternetConnection()) return;
  const auto object = byHandle_.find(handle);
  if (object == byHandle_.end()) return;
  object->second->PostSocketEvent(event, error);
}

void SocketSupport::DispatchAnswer(uint32_t request, const std::string& name,
                                   const std::string& address, int error) {
  if (!sockets_.CheckInternetConnection()) return;
  const auto object = byRequest_.find(request);
  if (object == byRequest_.end()) return;
  CSocket* const asker = object->second;
  byRequest_.erase(object);
  asker->PostGetHostEvent(request, address, name, error);
}

uint16_t UnsignedToInteger(int32_t number) { return static_cast<uint16_t>(number); }

int32_t IntegerToUnsigned(int16_t number) { return static_cast<uint16_t>(number); }

}  // namespace quarnel
