#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "core/error_log.h"
#include "platform/sockets.h"

namespace quarnel {

class CSocket;

// Why the system has no sockets; empty for an unknown error.
std::string_view StartFailureText(int error);

// What all sockets share (MSocketSupport): the registries by which an event finds its object. It
// outlives the sockets.
class SocketSupport {
 public:
  SocketSupport(Sockets& sockets, ErrorLog& log) : sockets_(sockets), log_(log) {}
  ~SocketSupport() { CleanupWinsock(); }
  SocketSupport(const SocketSupport&) = delete;
  SocketSupport& operator=(const SocketSupport&) = delete;

  // The largest datagram. Raises RuntimeError with the reason when the system has no sockets.
  int InitWinsockService();
  // Ends the use of the system's sockets once none is registered.
  void CleanupWinsock();

  bool RegisterSocket(SocketHandle handle, CSocket& object);
  void UnregisterSocket(SocketHandle handle);
  // The request's number, 0 when none could be made. A newer one of the same object replaces it.
  uint32_t ResolveHost(const std::string& host, CSocket& object);
  // Of an object that ends.
  void ForgetRequests(const CSocket& object);

  Sockets& sockets() { return sockets_; }
  ErrorLog& log() { return log_; }

 private:
  void Dispatch(SocketHandle handle, SocketEvent event, int error);
  void DispatchAnswer(uint32_t request, const std::string& name, const std::string& address,
                      int error);

  Sockets& sockets_;
  ErrorLog& log_;
  bool started_ = false;
  int largestDatagram_ = 0;
  std::map<SocketHandle, CSocket*> byHandle_;
  std::map<uint32_t, CSocket*> byRequest_;
};

// Ports pass through signed 16-bit numbers.
uint16_t UnsignedToInteger(int32_t number);
int32_t IntegerToUnsigned(int16_t number);

}  // namespace quarnel
