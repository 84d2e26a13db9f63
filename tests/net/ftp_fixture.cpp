#include "ftp_fixture.h"

#include "base/text.h"

namespace quarnel {
namespace {

int32_t ListenAtFreePort(CSocket& socket) {
  static int32_t port = 45'000;
  do {
    socket.CloseSocket();
    socket.SetLocalPort(++port);
    socket.Listen();
  } while (socket.State() != SocketState::kListening && port < 60'000);
  return port;
}

}  // namespace

NotingClient::NotingClient(FtpSupport& support) : CFtpClient(support) {
  const auto note = [this](const std::string& name) {
    return [this, name](FtpCompletion code) {
      notes += name + std::to_string(static_cast<int>(code)) + " ";
    };
  };
  OnConnect = note("connect");
  OnCreateDirectory = note("create");
  OnDeleteFile = note("delete");
  OnGetCurrentDirectory = note("current");
  OnSetCurrentDirectory = note("change");
  OnRemoveDirectory = note("remove");
  OnRenameFile = note("rename");
  OnDownloadFile = note("download");
  OnUploadFile = note("upload");
  OnEnumFiles = note("enum");
  OnQuitSession = note("quit");
  OnDataTransferProgress = [this](int32_t bytes) { progress = bytes; };
  OnStateChange = [this](FtpState state) {
    states += std::to_string(static_cast<int>(state)) + " ";
  };
  SessionProtocolMessage = [this](FtpMessage kind, const std::string& text) {
    if (kind == FtpMessage::kSent) sent += text + "\n";
    if (kind == FtpMessage::kRefusal) refusals += text + "\n";
  };
  ShowStatus = [this](std::string_view text) { status = text; };
}

void NotingClient::Start(FtpOperation operation, std::string_view command,
                         std::string_view argument) {
  BeginAsyncMethod(operation);
  SendFtpCommand(command, argument);
}

void NotingClient::SetNames(std::string_view remote, std::string_view local,
                            std::string_view newName) {
  remoteFile_ = remote;
  localFile_ = local;
  newName_ = newName;
}

bool FtpTest::Until(const std::function<bool()>& condition) {
  const Host::UnderWay underWay(host);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition() && std::chrono::steady_clock::now() < end) {
    host.Step(std::chrono::milliseconds(20));
  }
  return condition();
}

std::string FtpTest::Completion(NotingClient& client) {
  Until([&] { return !client.notes.empty(); });
  return client.Taken();
}

std::string FtpTest::Log() { return Exists(log.Path()) ? Read(log.Path()) : std::string(); }

ScriptedFtpServer::ScriptedFtpServer(SocketSupport& support, Host& host)
    : support_(support), listener_(support), dataListener_(support), pieceTimer_(host) {
  replies_ = {{"", "220 Welcome\r\n"},
              {"USER", "331 Password?\r\n"},
              {"PASS", "230 In\r\n"},
              {"PWD", "257 \"/\" is it\r\n"},
              {"CWD", "250 There\r\n"},
              {"TYPE", "200 Type\r\n"},
              {"PASV", "227 Passive ({data}).\r\n"},
              {"PORT", "200 Port\r\n"},
              {"REST", "350 From there\r\n"},
              {"LIST", "150 Comes\r\n"},
              {"RETR", "150 Comes\r\n"},
              {"QUIT", "221 Bye\r\n\f"}};
  pieceTimer_.Tick = [this] { SendPiece(); };
  pieceTimer_.Restart(Milliseconds(3));
  listener_.OnConnectionRequest = [this](SocketHandle request) { Accepted(request); };
  port_ = ListenAtFreePort(listener_);
}

void ScriptedFtpServer::Say(std::string_view command, std::string_view reply) {
  for (auto& [name, text] : replies_) {
    if (name == command) {
      text = reply;
      return;
    }
  }
  replies_.emplace_back(command, reply);
}

void ScriptedFtpServer::Accepted(SocketHandle request) {
  control_ = std::make_unique<CSocket>(support_);
  control_->OnDataArrival = [this](int32_t) { Heard(); };
  control_->Accept(request);
  Answer("");
}

void ScriptedFtpServer::Heard() {
  input_ += std::get<std::string>(control_->GetData());
  for (size_t end = input_.find("\r\n"); end != std::string::npos; end = input_.find("\r\n")) {
    const std::string line = input_.substr(0, end);
    input_.erase(0, end + 2);
    heard += line + "\n";
    Answer(line);
  }
}

void ScriptedFtpServer::Answer(std::string_view line) {
  const std::string command(line.substr(0, line.find(' ')));
  const std::string argument(line.substr(std::min(command.size() + 1, line.size())));
  std::string reply = "500 What?\r\n";
  for (const auto& [name, text] : replies_) {
    if (name == command) reply = text;
  }
  if (command == "PASV") {
    ListenForData();
    reply = Replace(reply, "{data}", PortArgument("127.0.0.1", dataListener_.LocalPort()));
  }
  if (command == "PORT") {
    const PasvEnd end = PasvEndOf("(" + argument + ")");
    data_ = std::make_unique<CSocket>(support_);
    data_->OnConnect = [this] { SendTransfer(); };
    data_->Connect(end.host, end.port);
  }
  if (command == "REST" && reply.starts_with('3')) offset_ = static_cast<size_t>(ToLong(argument));
  transfers_ = (command == "RETR" || command == "LIST") && reply.starts_with('1');
  pending_ += reply;
  SendPiece();
  SendTransfer();
}

void ScriptedFtpServer::SendPiece() {
  const size_t end = pending_.find_first_of("\v\f\a");
  const std::string piece = pending_.substr(0, end);
  const char mark = end == std::string::npos ? '\v' : pending_[end];
  pending_.erase(0, end == std::string::npos ? end : end + 1);
  if (!piece.empty()) control_->SendData(piece);
  if (mark == '\f') control_->CloseSocket();
  if (mark == '\a') data_.reset();
  if (pending_.empty()) {
    pieceTimer_.Stop();
  } else {
    pieceTimer_.Start();
  }
}

void ScriptedFtpServer::ListenForData() {
  data_.reset();
  dataListener_.OnConnectionRequest = [this](SocketHandle request) {
    data_ = std::make_unique<CSocket>(support_);
    data_->Accept(request);
    SendTransfer();
  };
  ListenAtFreePort(dataListener_);
}

void ScriptedFtpServer::SendTransfer() {
  if (!transfers_ || holdsData || data_ == nullptr || data_->State() != SocketState::kConnected)
    return;
  transfers_ = false;
  const std::string rest = data.substr(std::min(std::exchange(offset_, 0), data.size()));
  const auto finish = [this] {
    data_->OnSendComplete = nullptr;
    data_->CloseSocket();
    if (keepsSilent) return;
    const bool sending = !pending_.empty();
    pending_ += "226 Done\r\n";
    if (!sending) SendPiece();
  };
  if (rest.empty()) return finish();
  data_->OnSendComplete = finish;
  data_->SendData(rest);
}

}  // namespace quarnel
