#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quarnel {

// What an FTP client does at a time, by its number.
enum class FtpOperation {
  kNone = 0,
  kConnect = 1,
  kGetCurrentDirectory = 2,
  kSetCurrentDirectory = 3,
  kCreateDirectory = 4,
  kRemoveDirectory = 5,
  kRename = 6,
  kDeleteFile = 7,
  kDownloadFile = 8,
  kUploadFile = 9,
  kEnumFiles = 10,
  kQuitSession = 11,
};

enum class FtpState {
  kIdle = 0,
  kDisconnected = 1,
  kConnecting = 2,
  kConnected = 3,
  kAuthenticating = 4,
  kLoggedIn = 5,
  kChangingDirectory = 6,
  kDeleting = 7,
  kRemovingDirectory = 8,
  kCreatingDirectory = 9,
  kRenaming = 10,
  kOpeningData = 11,
  kListing = 13,
  kRetrieving = 15,
  kStoring = 17,
  kQuitting = 19,
};

// The state that goes with a command while an operation runs; kIdle for one that has none.
FtpState StateOfCommand(std::string_view command, FtpOperation operation);

// What a refusing reply means; empty for a code that is not known.
std::string_view FtpReplyText(int code);

// What the control connection has brought since the last command. A code of four characters counts,
// whether its line has an end or not, and the last one does; 0 when there is none.
struct FtpReply {
  int code = 0;
  std::string message;  // the lines of several that belong together, without their codes
};
FtpReply ReadFtpReply(std::string_view received);

// The argument of PORT.
std::string PortArgument(std::string_view address, int32_t port);

// Where the reply to PASV leads: what stands between the first brackets. Raises RuntimeError when
// that is no address and port.
struct PasvEnd {
  std::string host;
  int32_t port = 0;
};
PasvEnd PasvEndOf(std::string_view reply);

// The folder between the first two quotes of a reply, with slashes.
std::optional<std::string> QuotedFolder(std::string_view reply);

}  // namespace quarnel
