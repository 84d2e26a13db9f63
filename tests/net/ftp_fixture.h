#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "net/c_ftp_client.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {

// A client that notes its events, with an entry for every operation.
class NotingClient : public CFtpClient {
 public:
  explicit NotingClient(FtpSupport& support);
  std::string Taken() { return std::exchange(notes, {}); }
  void Start(FtpOperation operation, std::string_view command, std::string_view argument = {});
  void SetNames(std::string_view remote, std::string_view local, std::string_view newName);
  void SetUploadOffset(int64_t bytes) { uploadOffset_ = bytes; }

  std::string notes;     // completions, such as "connect0 "
  std::string states;    // their numbers
  std::string sent;      // commands, one a line
  std::string refusals;  // replies of 400 and above
  std::string status;    // what the window would show
  int32_t progress = 0;
};

class FtpTest : public PlatformTest {
 protected:
  bool Until(const std::function<bool()>& condition);
  // Until it has noted a completion; what it was.
  std::string Completion(NotingClient& client);
  // Until the server has said that a transfer is done, without which the next one takes that for
  // the reply to its first command.
  bool Done() {
    return Until([&] { return support.transferComplete; }) &&
           std::exchange(support.transferComplete, false);
  }
  // The log of errors; empty when there is none.
  std::string Log();

  TestHost host;
  ErrorLog log{files(), machine(), host, "QuarnelTest"};
  std::unique_ptr<Sockets> sockets = MakeSockets(host.events());
  SocketSupport socketSupport{*sockets, log};
  TimeOutSupport timeouts{host};
  FtpSupport support{socketSupport, timeouts, files(), host};
};

// A server that says what it is told to. It logs anyone in, and gives `data` for LIST and RETR.
class ScriptedFtpServer {
 public:
  ScriptedFtpServer(SocketSupport& support, Host& host);

  int32_t Port() const { return port_; }
  // Says `reply` to a command instead; to the connection itself where that is empty. "{data}" is
  // the argument of PASV, a vertical tab begins a new piece, a form feed closes the connection, and
  // a bell the data connection.
  void Say(std::string_view command, std::string_view reply);
  std::string heard;  // commands, one a line
  std::string data;
  bool holdsData = false;    // nothing is transferred
  bool keepsSilent = false;  // after a transfer

 private:
  void Accepted(SocketHandle request);
  void Heard();
  void Answer(std::string_view line);
  void SendPiece();
  void ListenForData();
  void SendTransfer();

  SocketSupport& support_;
  CSocket listener_;
  CSocket dataListener_;
  std::unique_ptr<CSocket> control_;
  std::unique_ptr<CSocket> data_;
  HostTimer pieceTimer_;
  std::vector<std::pair<std::string, std::string>> replies_;
  std::string input_;
  std::string pending_;
  int32_t port_ = 0;
  size_t offset_ = 0;
  bool transfers_ = false;
};

}  // namespace quarnel
