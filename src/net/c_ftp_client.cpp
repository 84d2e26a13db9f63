#include "net/c_ftp_client.h"

#include <array>
#include <utility>

namespace quarnel {
namespace {

constexpr int32_t kTimeOutSeconds = 60;
// What is longer has no end.
constexpr size_t kLongestReply = size_t{1} << 16;

using Event = CFtpClient::Completed CFtpClient::*;
// By the numbers of the operations.
constexpr std::array<Event, 12> kCompletionEvents = {
    nullptr,
    &CFtpClient::OnConnect,
    &CFtpClient::OnGetCurrentDirectory,
    &CFtpClient::OnSetCurrentDirectory,
    &CFtpClient::OnCreateDirectory,
    &CFtpClient::OnRemoveDirectory,
    &CFtpClient::OnRenameFile,
    &CFtpClient::OnDeleteFile,
    &CFtpClient::OnDownloadFile,
    &CFtpClient::OnUploadFile,
    &CFtpClient::OnEnumFiles,
    &CFtpClient::OnQuitSession,
};

// The last two characters are the end of the line.
std::string WithoutLineEnd(std::string_view text) {
  return std::string(text.substr(0, text.size() < 2 ? 0 : text.size() - 2));
}

}  // namespace

CFtpClient::CFtpClient(FtpSupport& support)
    : support_(support),
      timeOut_(support.timeouts()),
      data_(support.sockets()),
      control_(support.sockets()) {
  timeOut_.SetTimeOutValue(kTimeOutSeconds);
  timeOut_.TimeOut = [this] { TimedOut(); };
  control_.OnConnect = [this] { ControlConnected(); };
  control_.OnDataArrival = [this](int32_t) { ControlDataArrived(); };
  control_.OnClose = [this] { ControlClosed(); };
  control_.OnError = [this] { ControlFailed(); };
  data_.OnConnect = [this] { StartTransfer(); };
  data_.OnConnectionRequest = [this](SocketHandle request) { DataConnectionRequested(request); };
  data_.OnDataArrival = [this](int32_t bytes) { DataArrived(bytes); };
  data_.OnClose = [this] { DataClosed(); };
  data_.OnError = [this] { DataFailed(); };
  data_.OnSendComplete = [this] { DataSent(); };
}

CFtpClient::~CFtpClient() { timeOut_.StopTimer(); }

// ---- properties --------------------------------------------------------------------------------

bool CFtpClient::DataTransferInProgress() const {
  return operation_ == FtpOperation::kDownloadFile || operation_ == FtpOperation::kUploadFile ||
         operation_ == FtpOperation::kEnumFiles;
}

bool CFtpClient::Busy() const {
  return state_ != FtpState::kIdle && state_ != FtpState::kDisconnected;
}

void CFtpClient::SetSendBufferLenght(int32_t bytes) {
  Reporting(log(), "SendBufferLenght in cftpclient Class", [&] {
    if (bytes < 512 || bytes > 8192) throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
    sendBufferLenght_ = bytes;
  });
}

void CFtpClient::SetRemotePort(int32_t port) {
  Reporting(log(), "RemotePort  in cftpclient Class", [&] {
    if (port < 1 || port > 65'535) throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
    remotePort_ = port;
  });
}

// ---- operations --------------------------------------------------------------------------------

void CFtpClient::BeginAsyncMethod(FtpOperation operation) {
  operation_ = operation;
  if (!underWay_) underWay_.emplace(support_.host());
  timeOut_.StartTimer();
}

void CFtpClient::EndAsyncMethod() {
  timeOut_.StopTimer();
  operation_ = FtpOperation::kNone;
  underWay_.reset();
  SetState(FtpState::kIdle);
}

void CFtpClient::SetState(FtpState state) {
  state_ = state;
  if (const auto raise = OnStateChange) raise(state);
}

void CFtpClient::RaiseCompletion(FtpOperation operation, FtpCompletion code) {
  const Event event = kCompletionEvents.at(static_cast<size_t>(operation));
  if (event == nullptr) return;
  if (const Completed raise = this->*event) raise(code);
}

void CFtpClient::Complete() {
  const FtpOperation operation = operation_;
  EndAsyncMethod();
  RaiseCompletion(operation, FtpCompletion::kSuccess);
}

void CFtpClient::FailOperation() {
  const FtpOperation operation = operation_;
  EndAsyncMethod();
  RaiseCompletion(operation, FtpCompletion::kFailure);
}

void CFtpClient::Connect() {
  Reporting(log(), "Connect", [&] {
    if (server_.empty()) return;
    // The end of what was connected would be taken for that of what is going to be.
    if (control_.Handle() != kNoSocket) control_.CloseSocket();
    if (control_.Handle() != kNoSocket) control_.CloseSocket();
    SetState(FtpState::kConnecting);
    lastCommand_.clear();
    response_.clear();
    BeginAsyncMethod(FtpOperation::kConnect);
    control_.Connect(server_, remotePort_);
  });
}

void CFtpClient::SetCurrentDirectory(std::string_view path) {
  Reporting(log(), "SetCurrentDirectory in cftpCleint Class", [&] {
    if (Running()) return;
    if (path.empty()) throw RuntimeError(ErrorNumber::kInvalidCall);
    BeginAsyncMethod(FtpOperation::kSetCurrentDirectory);
    SendFtpCommand("CWD", path);
  });
}

void CFtpClient::GetCurrentDirectory() {
  Reporting(log(), "GetCurrentDirectory in cftpClient Class", [&] {
    if (Running()) return;
    BeginAsyncMethod(FtpOperation::kGetCurrentDirectory);
    SendFtpCommand("PWD");
  });
}

void CFtpClient::DownloadFile(std::string_view remote, std::string_view local, bool overwrite) {
  Reporting(log(), "DownloadFile  in cftpClient class", [&] {
    if (Running()) return;
    if (remote.empty() || local.empty()) throw RuntimeError(ErrorNumber::kInvalidCall);
    remoteFile_ = remote;
    localFile_ = local;
    overwrite_ = overwrite;
    transferred_ = 0;
    BeginAsyncMethod(FtpOperation::kDownloadFile);
    SendFtpCommand("TYPE", transferMode_ == FtpMode::kAscii ? "A" : "I");
  });
}

void CFtpClient::EnumFiles() {
  Reporting(log(), "EnumFiles in cftpClient Class", [&] {
    if (Running()) return;
    // Of a listing that was refused half-way.
    listingBuffer_.clear();
    BeginAsyncMethod(FtpOperation::kEnumFiles);
    SendFtpCommand("TYPE", "A");
  });
}

void CFtpClient::QuitSession() {
  Reporting(log(), "Quit Session in cftpClient ", [&] {
    if (Running()) return;
    BeginAsyncMethod(FtpOperation::kQuitSession);
    SendFtpCommand("QUIT");
  });
}

void CFtpClient::CancelAsyncMethod() {
  Reporting(log(), " CancelAsyncMethod in  ", [&] {
    const FtpOperation operation = operation_;
    EndAsyncMethod();
    switch (operation) {
      case FtpOperation::kNone:
      case FtpOperation::kQuitSession:
        return;
      case FtpOperation::kDownloadFile:
      case FtpOperation::kUploadFile:
        CloseDataConnection();
        CloseLocalFile();
        break;
      case FtpOperation::kEnumFiles:
        listingBuffer_.clear();
        CloseDataConnection();
        break;
      default:
        break;
    }
    RaiseCompletion(operation, FtpCompletion::kCancelled);
  });
}

void CFtpClient::TimedOut() {
  Reporting(log(), "m_objTimeOut_TimeOut",
            [&] { RaiseCompletion(operation_, FtpCompletion::kTimeOut); });
}

// ---- the control connection --------------------------------------------------------------------

void CFtpClient::SendFtpCommand(std::string_view command, std::string_view argument) {
  Reporting(log(), "SendFtpCommand in cFTPClient Class", [&] {
    if (control_.State() != SocketState::kConnected) return;
    response_.clear();
    SetState(StateOfCommand(command, operation_));
    std::string line(command);
    line += ' ';
    line += argument;
    lastCommand_ = command;
    control_.SendData((argument.empty() ? lastCommand_ : line) + "\r\n");
    if (const auto raise = SessionProtocolMessage) raise(FtpMessage::kSent, line);
  });
}

void CFtpClient::ControlConnected() {
  Reporting(log(), "m_objControlSocket_OnConnect", [&] {
    timeOut_.Reset();
    SetState(FtpState::kConnected);
  });
}

void CFtpClient::ControlDataArrived() {
  Reporting(log(), "m_objControlSocket_OnDataArrival", [&] {
    if (Running()) timeOut_.Reset();
    const auto received = std::get<std::string>(control_.GetData());
    lastServerResponse_ = received;
    response_ += received;
    if (response_.size() > kLongestReply) {
      response_.clear();
      if (Running()) FailOperation();
      return CloseControlConnection();
    }
    const int code = GetResponseCode();
    if (code == 0) return;
    if (const auto raise = SessionProtocolMessage) {
      raise(code < 400 ? FtpMessage::kReply : FtpMessage::kRefusal, WithoutLineEnd(received));
    }
    ActOn(code);
    constexpr int kTransferDone = 226;
    if (code != kTransferDone) return;
    support_.transferComplete = true;
    if (const Handler raise = OnTransferComplete) raise();
  });
}

// Waits for the rest of a reply of several lines, which comes by the handler of a nested arrival.
int CFtpClient::GetResponseCode() {
  FtpReply reply;
  while (true) {
    constexpr size_t kShortest = 3;
    if (response_.size() < kShortest) return 0;
    reply = ReadFtpReply(response_);
    if (reply.message.size() < kShortest || reply.code != 0) break;
    // One wait for all: a server could nest them without end.
    if (!Running() || waiting_) break;
    WaitForMore();
    if (response_.starts_with("221-") || control_.State() != SocketState::kConnected) break;
  }
  if (reply.message.size() > 2) serverMessage_ = WithoutLineEnd(reply.message);
  return reply.code;
}

void CFtpClient::WaitForMore() {
  struct Leave {
    bool& flag;
    ~Leave() { flag = false; }
  };
  waiting_ = true;
  const Leave leave{waiting_};
  support_.host().WaitForEvent();
}

void CFtpClient::ControlClosed() {
  Reporting(log(), "m_objControlSocket_OnClose", [&] {
    if (Running()) EndAsyncMethod();
    SetState(FtpState::kDisconnected);
  });
}

void CFtpClient::ControlFailed() {
  Reporting(log(), "m_objControlSocket_OnError in cftpclient class", [&] {
    const FtpOperation operation = operation_;
    EndAsyncMethod();
    if (operation != FtpOperation::kQuitSession) {
      RaiseCompletion(operation, FtpCompletion::kFailure);
    }
  });
}

void CFtpClient::CloseControlConnection() {
  Reporting(log(), "CloseControlConnection", [&] {
    EndAsyncMethod();
    if (control_.Handle() != kNoSocket) control_.CloseSocket();
  });
}

}  // namespace quarnel
