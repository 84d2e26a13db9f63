// What a client does with the replies to its commands.
#include "net/c_ftp_client.h"

namespace quarnel {
namespace {

constexpr int kNoFolder = 16001;
constexpr std::string_view kNoFolderText =
    "Cannot retrieve the current directory path. Unexpected server response.";
constexpr std::string_view kServerBusy =
    "We are sorry you your inconvience as server Busy is busy at this time ,Please try  after Some "
    "time .";

template <typename... Codes>
bool IsOneOf(int code, Codes... codes) {
  return ((code == codes) || ...);
}

}  // namespace

// Nobody is told what the code means; LastServerResponse has the server's own words.
void CFtpClient::ReportReply() {
  Reporting(log(), "RasterOpConstants in CCFTPClient Class", [&] { FailOperation(); });
}

void CFtpClient::ActOn(int code) {
  switch (operation_) {
    case FtpOperation::kNone:
      if (code == 421) CloseControlConnection();
      return;
    case FtpOperation::kConnect:
      return ConnectReply(code);
    case FtpOperation::kGetCurrentDirectory:
      return CurrentDirectoryReply(code);
    case FtpOperation::kCreateDirectory:
      return CompleteOn(code, 257);
    case FtpOperation::kSetCurrentDirectory:
    case FtpOperation::kRemoveDirectory:
    case FtpOperation::kDeleteFile:
      return CompleteOn(code, 250);
    case FtpOperation::kRename:
      return RenameReply(code);
    case FtpOperation::kDownloadFile:
      return DownloadReply(code);
    case FtpOperation::kUploadFile:
      return UploadReply(code);
    case FtpOperation::kEnumFiles:
      return EnumReply(code);
    case FtpOperation::kQuitSession:
      return QuitReply(code);
  }
}

void CFtpClient::CompleteOn(int code, int wanted) {
  if (code == wanted) {
    Complete();
  } else {
    ReportReply();
  }
}

void CFtpClient::ConnectReply(int code) {
  const auto logIn = [&] {
    SetState(FtpState::kLoggedIn);
    SendFtpCommand("PWD");
  };
  if (lastCommand_.empty() && code == 220) return SendFtpCommand("USER", userName_);
  if (lastCommand_ == "USER") {
    if (code == 230) return logIn();
    if (code == 331) return SendFtpCommand("PASS", password_);
  }
  if (lastCommand_ == "PASS" && IsOneOf(code, 202, 230)) return logIn();
  if (lastCommand_ == "PWD" && code == 257) {
    if (GetDirFromResponse()) return Complete();
    error_.Number = kNoFolder;
    error_.Description = kNoFolderText;
    CloseControlConnection();
    return RaiseCompletion(FtpOperation::kConnect, FtpCompletion::kFailure);
  }
  ReportReply();
  CloseControlConnection();
}

void CFtpClient::CurrentDirectoryReply(int code) {
  if (code != 257) return ReportReply();
  EndAsyncMethod();
  RaiseCompletion(FtpOperation::kGetCurrentDirectory,
                  GetDirFromResponse() ? FtpCompletion::kSuccess : FtpCompletion::kFailure);
}

bool CFtpClient::GetDirFromResponse() {
  bool found = false;
  Reporting(log(), "GetDirFromResponse in cftoclient", [&] {
    constexpr size_t kShortest = 7;
    directory_.clear();
    if (response_.size() < kShortest) return;
    const auto folder = QuotedFolder(response_);
    found = folder.has_value();
    if (found) {
      directory_ = *folder;
    } else if (const auto show = ShowStatus) {
      show(kServerBusy);
    }
  });
  return found;
}

void CFtpClient::RenameReply(int code) {
  if (lastCommand_ == "RNTO") return CompleteOn(code, 250);
  if (code == 350) return SendFtpCommand("RNTO", newName_);
  ReportReply();
}

void CFtpClient::DownloadReply(int code) {
  if (lastCommand_ == "TYPE" && code == 200) return OpenDataConnection();
  if (lastCommand_ == "PORT") {
    if (code == 200) return StartTransfer();
    data_.CloseSocket();
    return ReportReply();
  }
  if (lastCommand_ == "PASV" && code == 227) return EstablishPasvDataConnection();
  if (lastCommand_ == "REST" && code == 350) return SendFtpCommand("RETR", remoteFile_);
  if (lastCommand_ == "RETR") {
    if (IsOneOf(code, 110, 125, 150, 226, 250)) return;
    CloseDataConnection();
    CloseLocalFile();
  }
  ReportReply();
}

void CFtpClient::UploadReply(int code) {
  if (lastCommand_ == "TYPE" && code == 200) {
    if (uploadOffset_ > 0) return SendFtpCommand("REST", std::to_string(uploadOffset_));
    return OpenDataConnection();
  }
  if (lastCommand_ == "REST" && code == 350) return OpenDataConnection();
  if (lastCommand_ == "PORT") {
    if (code == 200) return StartTransfer();
    data_.CloseSocket();
    return ReportReply();
  }
  if (lastCommand_ == "PASV" && code == 227) return EstablishPasvDataConnection();
  if (lastCommand_ != "STOR") return ReportReply();
  if (IsOneOf(code, 110, 125, 150)) {
    if (passiveMode_) transferred_ = uploadOffset_;
  } else if (IsOneOf(code, 226, 250)) {
    Complete();
  } else {
    const FtpOperation operation = operation_;
    EndAsyncMethod();
    CloseLocalFile();
    RaiseCompletion(operation, FtpCompletion::kFailure);
  }
}

void CFtpClient::EnumReply(int code) {
  if (lastCommand_ == "TYPE" && code == 200) return OpenDataConnection();
  if (lastCommand_ == "PORT" && code == 200) return StartTransfer();
  if (lastCommand_ == "PASV" && code == 227) return EstablishPasvDataConnection();
  if (lastCommand_ == "LIST") {
    if (IsOneOf(code, 125, 150, 226, 250)) return;
    CloseDataConnection();
  }
  ReportReply();
}

void CFtpClient::QuitReply(int code) {
  if (code != 221) return ReportReply();
  EndAsyncMethod();
  control_.CloseSocket();
  RaiseCompletion(FtpOperation::kQuitSession, FtpCompletion::kSuccess);
}

}  // namespace quarnel
