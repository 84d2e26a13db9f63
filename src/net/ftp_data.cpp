// A client's data connection, and the local file behind it.
#include <algorithm>
#include <limits>
#include <utility>

#include "net/c_ftp_client.h"

namespace quarnel {

// ---- opening -----------------------------------------------------------------------------------

void CFtpClient::OpenDataConnection() {
  if (passiveMode_) {
    SendFtpCommand("PASV");
  } else {
    SendPORTCommand();
  }
}

void CFtpClient::SendPORTCommand() {
  Reporting(log(), "SendPORTCommand in CftpClient Class ", [&] {
    constexpr int kMostPorts = 100;
    const FtpOperation operation = operation_;
    SetState(FtpState::kOpeningData);
    for (int turn = 0; turn < kMostPorts; ++turn) {
      support_.host().DoEvents();
      if (operation_ != operation) return;
      const int32_t port = support_.GetFreePort();
      CloseDataSocket();
      data_.SetLocalPort(port);
      data_.Listen();
      if (data_.State() != SocketState::kListening) continue;
      return SendFtpCommand("PORT", PortArgument(control_.LocalIP(), port));
    }
    FailOperation();
  });
}

// A reply that came without its end is looked at again when that has come.
void CFtpClient::EstablishPasvDataConnection() {
  Reporting(log(), "EstablishPasvDataConnection", [&] {
    SetState(FtpState::kOpeningData);
    const PasvEnd end = PasvEndOf(response_);
    CloseDataSocket();
    data_.SetLocalPort(0);
    data_.Connect(end.host, end.port);
  });
}

void CFtpClient::DataConnectionRequested(SocketHandle request) {
  Reporting(log(), "m_objDataSocket_OnConnectionRequest", [&] {
    CloseDataSocket();
    data_.Accept(request);
    if (operation_ == FtpOperation::kUploadFile) transferred_ = uploadOffset_;
  });
}

void CFtpClient::StartTransfer() {
  const bool ready = Reporting(log(), "OpenLocalFile", [&] {
    switch (operation_) {
      case FtpOperation::kDownloadFile:
        OpenLocalFile();
        if (lastCommand_ != "REST") SendFtpCommand("RETR", remoteFile_);
        return;
      case FtpOperation::kUploadFile:
        OpenFileToSend();
        return SendFtpCommand("STOR", remoteFile_);
      case FtpOperation::kEnumFiles:
        return SendFtpCommand("LIST");
      default:
        return;
    }
  });
  if (ready) return;
  CloseDataConnection();
  CloseLocalFile();
  FailOperation();
}

// Closed for good: the end of a connection would be taken for that of the next one.
void CFtpClient::CloseDataSocket() {
  if (data_.Handle() != kNoSocket) data_.CloseSocket();
  if (data_.Handle() != kNoSocket) data_.CloseSocket();
}

void CFtpClient::CloseDataConnection() {
  Reporting(log(), "CloseDataConnection in cftpClient Class", [&] {
    if (data_.Handle() == kNoSocket) return;
    support_.sockets().sockets().ShutDown(data_.Handle(), true);
    CloseDataSocket();
  });
}

// ---- the local file ----------------------------------------------------------------------------

void CFtpClient::OpenLocalFile() {
  // One that stays open since a server refused to go on with it.
  file_.reset();
  int64_t offset = 0;
  if (const auto entry = support_.files().Stat(localFile_); entry && !entry->IsFolder()) {
    if (overwrite_) {
      support_.files().Delete(localFile_);
    } else {
      offset = static_cast<int64_t>(entry->size);
    }
  }
  file_ = support_.files().Open(localFile_, OpenMode::kReadWrite);
  if (offset == 0) return;
  transferred_ = offset;
  file_->Seek(static_cast<uint64_t>(offset));
  SendFtpCommand("REST", std::to_string(offset));
}

void CFtpClient::OpenFileToSend() {
  transferred_ = uploadOffset_;
  file_ = support_.files().Open(localFile_, OpenMode::kReadWrite);
  fileLength_ = static_cast<int64_t>(file_->Size());
}

void CFtpClient::CloseLocalFile() {
  file_.reset();
  localFile_.clear();
  remoteFile_.clear();
  transferred_ = 0;
  fileLength_ = 0;
  uploadOffset_ = 0;
  overwrite_ = false;
}

// ---- events of the connection ------------------------------------------------------------------

void CFtpClient::TellProgress(int64_t bytes) {
  constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
  if (const auto raise = OnDataTransferProgress)
    raise(static_cast<int32_t>(std::min(bytes, kMost)));
}

void CFtpClient::DataArrived(int32_t bytes) {
  if (Running()) timeOut_.Reset();
  if (bytes <= 0) return;
  data_.TakeData(arrived_);
  if (operation_ == FtpOperation::kDownloadFile) {
    const bool written = Reporting(log(), "m_objDataSocket_OnDataArrival", [&] {
      if (file_ == nullptr) throw RuntimeError(ErrorNumber::kBadFileName);
      file_->Write(arrived_);
    });
    // A file with a hole must not be taken for whole.
    if (!written) return DataFailed();
    transferred_ += static_cast<int64_t>(arrived_.size());
    TellProgress(transferred_);
  } else if (operation_ == FtpOperation::kEnumFiles) {
    constexpr size_t kLongestListing = size_t{1} << 24;
    listingBuffer_ += arrived_;
    if (listingBuffer_.size() > kLongestListing) return DataFailed();
    TellProgress(static_cast<int64_t>(listingBuffer_.size()));
  }
}

void CFtpClient::DataClosed() {
  Reporting(log(), "m_objDataSocket_OnClose", [&] {
    if (operation_ == FtpOperation::kDownloadFile) {
      EndAsyncMethod();
      CloseLocalFile();
      RaiseCompletion(FtpOperation::kDownloadFile, FtpCompletion::kSuccess);
    } else if (operation_ == FtpOperation::kEnumFiles) {
      EndAsyncMethod();
      listing_ = std::exchange(listingBuffer_, {});
      files_ = GetFileListX(listing_, support_.host().clock().Now());
      RaiseCompletion(FtpOperation::kEnumFiles, FtpCompletion::kSuccess);
    }
  });
}

void CFtpClient::DataFailed() {
  Reporting(log(), "m_objDataSocket_OnError", [&] {
    const FtpOperation operation = operation_;
    EndAsyncMethod();
    CloseDataSocket();
    switch (operation) {
      case FtpOperation::kDownloadFile:
      case FtpOperation::kUploadFile:
        CloseLocalFile();
        break;
      case FtpOperation::kEnumFiles:
        listingBuffer_.clear();
        break;
      default:
        return;
    }
    RaiseCompletion(operation, FtpCompletion::kFailure);
  });
}

void CFtpClient::DataSent() {
  timeOut_.Reset();
  TellProgress(transferred_);
}

}  // namespace quarnel
