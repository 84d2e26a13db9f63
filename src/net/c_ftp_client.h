#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/error_log.h"
#include "net/c_socket.h"
#include "net/c_timeout.h"
#include "net/ftp_listing.h"
#include "net/ftp_protocol.h"
#include "net/ftp_support.h"

namespace quarnel {

enum class FtpCompletion { kSuccess = 0, kFailure = 1, kTimeOut = 2, kCancelled = 3 };
enum class FtpMessage { kSent = 0, kReply = 1, kRefusal = 2 };
enum class FtpMode { kAscii = 0, kBinary = 1 };

struct CFtpError {
  int32_t Number = 0;
  std::string Description;
  std::string Source;
};

// An FTP client, one operation at a time, each of which ends with its event. A time-out is told
// again each period and ends nothing: whoever started the operation cancels it. Connections that
// cannot be made show as a time-out, and one that the server closes as FtpState::kDisconnected,
// without an event of the operation. None of its events may end the client.
class CFtpClient {
 public:
  // Raises RuntimeError where the system has no sockets.
  explicit CFtpClient(FtpSupport& support);
  ~CFtpClient();
  CFtpClient(const CFtpClient&) = delete;
  CFtpClient& operator=(const CFtpClient&) = delete;

  // Each, but for Connect and CancelAsyncMethod, does nothing while another one runs.

  // To FtpServer, if that is set, and logs in; what was connected is given up.
  void Connect();
  void SetCurrentDirectory(std::string_view path);
  void GetCurrentDirectory();
  // Adds to a local file that stands, unless that is to be overwritten. Finished is it when the
  // server closes the data connection, whatever it then says about the transfer; the bytes of a
  // transfer that failed stay. A failing write ends it with kFailure.
  void DownloadFile(std::string_view remote, std::string_view local, bool overwrite);
  void EnumFiles();
  void QuitSession();
  void CancelAsyncMethod();

  bool DataTransferInProgress() const;
  bool Busy() const;
  // Events are processed in the midst of its work: it cannot end now.
  bool Waits() const { return waiting_; }
  const CFtpFiles& CurrentDirectoryFiles() const { return files_; }
  const std::string& CurrentDirectoryListing() const { return listing_; }
  const std::string& CurrentDirectory() const { return directory_; }
  const std::string& FtpServerMessage() const { return serverMessage_; }

  const std::string& FtpServer() const { return server_; }
  void SetFtpServer(std::string_view server) { server_ = server; }
  const std::string& Password() const { return password_; }
  void SetPassword(std::string_view password) { password_ = password; }
  const std::string& UserName() const { return userName_; }
  void SetUserName(std::string_view userName) { userName_ = userName; }
  bool PassiveMode() const { return passiveMode_; }
  void SetPassiveMode(bool passive) { passiveMode_ = passive; }
  int32_t SendBufferLenght() const { return sendBufferLenght_; }
  void SetSendBufferLenght(int32_t bytes);  // 512 to 8,192
  int32_t RemotePort() const { return remotePort_; }
  void SetRemotePort(int32_t port);  // 1 to 65,535
  FtpMode TransferMode() const { return transferMode_; }
  void SetTransferMode(FtpMode mode) { transferMode_ = mode; }
  int32_t TimeOut() const { return timeOut_.TimeOutValue(); }  // seconds
  void SetTimeOut(int32_t seconds) { timeOut_.SetTimeOutValue(seconds); }

  FtpState FtpSessionState() const { return state_; }
  // What came last, as it came.
  const std::string& LastServerResponse() const { return lastServerResponse_; }
  CFtpError& LastFtpError() { return error_; }

  using Completed = std::function<void(FtpCompletion)>;
  Completed OnConnect;
  Completed OnCreateDirectory;
  Completed OnDeleteFile;
  Completed OnGetCurrentDirectory;
  Completed OnSetCurrentDirectory;
  Completed OnRemoveDirectory;
  Completed OnRenameFile;
  Completed OnDownloadFile;
  Completed OnUploadFile;
  Completed OnEnumFiles;
  std::function<void(int32_t bytes)> OnDataTransferProgress;
  // A password is told as it is sent: nobody may keep that line.
  std::function<void(FtpMessage, const std::string& text)> SessionProtocolMessage;
  std::function<void(FtpState)> OnStateChange;
  Completed OnQuitSession;
  // The server has said that a whole transfer is done.
  Handler OnTransferComplete;
  // A line for the window's status.
  std::function<void(std::string_view)> ShowStatus;

 protected:
  // For operations that have no entry above: what their replies lead to is known.
  void BeginAsyncMethod(FtpOperation operation);
  void SendFtpCommand(std::string_view command, std::string_view argument = {});

  std::string newName_;
  std::string remoteFile_;
  std::string localFile_;
  int64_t uploadOffset_ = 0;

 private:
  void EndAsyncMethod();
  bool Running() const { return operation_ != FtpOperation::kNone; }
  void SetState(FtpState state);
  void RaiseCompletion(FtpOperation operation, FtpCompletion code);
  void Complete();
  void FailOperation();
  void ReportReply();

  void ControlConnected();
  void ControlDataArrived();
  void ControlClosed();
  void ControlFailed();
  void TimedOut();
  void CloseControlConnection();
  int GetResponseCode();
  void WaitForMore();

  void ActOn(int code);
  void CompleteOn(int code, int wanted);
  void ConnectReply(int code);
  void CurrentDirectoryReply(int code);
  void RenameReply(int code);
  void DownloadReply(int code);
  void UploadReply(int code);
  void EnumReply(int code);
  void QuitReply(int code);
  bool GetDirFromResponse();

  void OpenDataConnection();
  void SendPORTCommand();
  void EstablishPasvDataConnection();
  void StartTransfer();
  void OpenLocalFile();
  void OpenFileToSend();
  void CloseLocalFile();
  void CloseDataSocket();
  void CloseDataConnection();
  void DataConnectionRequested(SocketHandle request);
  void DataArrived(int32_t bytes);
  void DataClosed();
  void DataFailed();
  void DataSent();
  void TellProgress(int64_t bytes);

  ErrorLog& log() { return support_.sockets().log(); }

  FtpSupport& support_;
  FtpOperation operation_ = FtpOperation::kNone;
  // A virtual clock must not run ahead of the server.
  std::optional<Host::UnderWay> underWay_;
  std::string response_;
  bool waiting_ = false;  // for the rest of a reply
  bool overwrite_ = false;
  std::unique_ptr<File> file_;
  std::string userName_;
  std::string password_;
  std::string server_;
  int32_t remotePort_ = 21;
  std::string directory_;
  bool passiveMode_ = false;
  std::string serverMessage_;
  std::string lastCommand_;
  FtpMode transferMode_ = FtpMode::kBinary;
  int64_t transferred_ = 0;
  int64_t fileLength_ = 0;
  std::string arrived_;
  std::string listingBuffer_;
  CFtpFiles files_;
  std::string listing_;
  FtpState state_ = FtpState::kDisconnected;
  std::string lastServerResponse_;
  int32_t sendBufferLenght_ = 1460;
  // They end from the last one up.
  CFtpError error_;
  CTimeout timeOut_;
  CSocket data_;
  CSocket control_;
};

}  // namespace quarnel
