#pragma once

#include <cstdint>

#include "controls/host.h"
#include "net/c_timeout.h"
#include "net/socket_support.h"
#include "platform/files.h"

namespace quarnel {

// What FTP clients work with and share. It outlives them.
class FtpSupport {
 public:
  FtpSupport(SocketSupport& sockets, TimeOutSupport& timeouts, Files& files, Host& host)
      : sockets_(sockets), timeouts_(timeouts), files_(files), host_(host) {}

  // The next port to listen at, which may be in use: from a random one on, one after the other.
  int32_t GetFreePort();

  SocketSupport& sockets() { return sockets_; }
  TimeOutSupport& timeouts() { return timeouts_; }
  Files& files() { return files_; }
  Host& host() { return host_; }

  // A server has said that a whole transfer is done. Whoever waits for that clears it before.
  bool transferComplete = false;

 private:
  SocketSupport& sockets_;
  TimeOutSupport& timeouts_;
  Files& files_;
  Host& host_;
  int32_t freePort_ = 0;
};

}  // namespace quarnel
