#include "net/ftp_transfer.h"

#include <utility>

namespace quarnel {

FtpTransfer::FtpTransfer(FtpSupport& support, std::shared_ptr<Transfers::Retired> retired)
    : Transfer(support.host().events()),
      support_(support),
      retired_(std::move(retired)),
      patience_(support.host()) {
  patience_.Tick = [this] { TimeIsUp(); };
}

FtpTransfer::~FtpTransfer() { FtpTransfer::Abandon(); }

int32_t FtpTransfer::Begin(const Fetch& fetch) {
  FtpAddress address;
  if (!IgnoringErrors([&] { address = FtpAddressOf(fetch.url); })) {
    return transfer_error::kBadAddress;
  }
  path_ = address.path;
  client_ = std::make_unique<CFtpClient>(support_);
  client_->SetFtpServer(address.host);
  client_->SetRemotePort(address.port);
  client_->SetUserName(address.user);
  client_->SetPassword(address.password);
  client_->SetPassiveMode(true);
  client_->SetTransferMode(FtpMode::kBinary);
  client_->SetTimeOut(0);
  client_->OnStateChange = [this](FtpState state) { StateChanged(state); };
  client_->OnConnect = [this](FtpCompletion code) { LoggedIn(code); };
  client_->OnDownloadFile = [this](FtpCompletion code) { Downloaded(code); };
  client_->OnDataTransferProgress = [this](int32_t bytes) { Progressed(bytes); };
  client_->OnTransferComplete = [this] { SaidDone(); };
  patience_.Restart(fetch.patience);
  patience_.Start();
  underWay_.emplace(support_.host());
  client_->Connect();
  return 0;
}

// Often in one of the client's own events, which it must outlive.
void FtpTransfer::Abandon() {
  patience_.Stop();
  underWay_.reset();
  if (!client_) return;
  client_->OnStateChange = nullptr;
  client_->OnConnect = nullptr;
  client_->OnDownloadFile = nullptr;
  client_->OnDataTransferProgress = nullptr;
  client_->OnTransferComplete = nullptr;
  client_->CancelAsyncMethod();
  retired_->Add(std::move(client_));
  events().Post([retired = std::weak_ptr(retired_)] {
    if (const auto clients = retired.lock()) clients->EndIdle();
  });
}

// By a timer of its own: the end of any client takes the time-outs of all with it.
void FtpTransfer::TimeIsUp() {
  Fail(connected_ ? transfer_error::kTooSlow : transfer_error::kNoConnection);
}

void FtpTransfer::StateChanged(FtpState state) {
  patience_.Start();
  if (state == FtpState::kConnecting) return Reach(TransferStatus::kConnecting);
  if (state == FtpState::kDisconnected) return Fail(transfer_error::kBroken);
  if (state == FtpState::kConnected) connected_ = true;
}

void FtpTransfer::LoggedIn(FtpCompletion code) {
  if (code != FtpCompletion::kSuccess) return FailByReply();
  Reach(TransferStatus::kAnswered);
  speed_.emplace(fetch().patience);
  client_->DownloadFile(path_, fetch().path, true);
}

void FtpTransfer::Progressed(int64_t bytes) {
  patience_.Start();
  Reach(TransferStatus::kReceiving, 0, bytes);
  if (bytes > fetch().mostBytes) return Fail(transfer_error::kTooLarge);
  if (speed_ && speed_->IsTooSlow(bytes)) Fail(transfer_error::kTooSlow);
}

void FtpTransfer::Downloaded(FtpCompletion code) {
  if (code != FtpCompletion::kSuccess) return FailByReply();
  hasData_ = true;
  Reach(TransferStatus::kReceiving);
  if (saidDone_) Finish();
}

void FtpTransfer::SaidDone() {
  saidDone_ = true;
  if (hasData_) Finish();
}

void FtpTransfer::FailByReply() {
  const int code = ReadFtpReply(client_->LastServerResponse()).code;
  if (code >= 400) return Fail(code, FtpReplyText(code));
  // A reply that nobody understands, or a file that cannot be written.
  Fail(transfer_error::kBadAnswer, client_->LastFtpError().Description);
}

}  // namespace quarnel
