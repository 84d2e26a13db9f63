#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "net/c_ftp_client.h"
#include "platform/transfer.h"

namespace quarnel {

// Fetches of files, by the scheme of their address: http and https by the system's own means, ftp
// by CFtpClient. Whoever starts one under a virtual clock holds a Host::UnderWay meanwhile.
class Transfers {
 public:
  explicit Transfers(FtpSupport& ftp);

  // Where the scheme is unknown, the start says so.
  std::unique_ptr<Transfer> For(std::string_view url);

  // Clients that nobody needs any more, while they may be in the midst of something.
  class Retired {
   public:
    void Add(std::unique_ptr<CFtpClient> client);
    void EndIdle();

   private:
    std::vector<std::unique_ptr<CFtpClient>> clients_;
  };

 private:
  FtpSupport& ftp_;
  std::shared_ptr<Retired> retired_;
};

// What an ftp address says. Raises RuntimeError where it cannot be used: without a host or a path,
// or with a character that would end a command.
struct FtpAddress {
  std::string user;
  std::string password;
  std::string host;
  int32_t port = 21;
  std::string path;  // without the first slash and without a query
};
FtpAddress FtpAddressOf(std::string_view url);

}  // namespace quarnel
