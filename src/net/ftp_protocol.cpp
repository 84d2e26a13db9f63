#include "net/ftp_protocol.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "base/runtime_error.h"
#include "base/text.h"

namespace quarnel {
namespace {

constexpr size_t kCodeLength = 3;

struct CommandState {
  std::string_view command;
  FtpState state;
};
constexpr CommandState kCommandStates[] = {
    {"USER", FtpState::kAuthenticating},   {"PASS", FtpState::kAuthenticating},
    {"CWD", FtpState::kChangingDirectory}, {"DELE", FtpState::kDeleting},
    {"RMD", FtpState::kRemovingDirectory}, {"MKD", FtpState::kCreatingDirectory},
    {"RNFR", FtpState::kRenaming},         {"LIST", FtpState::kListing},
    {"PWD", FtpState::kListing},           {"RETR", FtpState::kRetrieving},
    {"STOR", FtpState::kStoring},          {"QUIT", FtpState::kQuitting},
};
// These belong to whatever is going to be transferred.
constexpr std::array<std::string_view, 4> kPreparing = {"TYPE", "PASV", "PORT", "REST"};

constexpr std::pair<int, std::string_view> kReplyTexts[] = {
    {120, "Service ready in nnn minutes."},
    {332, "Need account for login."},
    {350, "Requested file action pending further information."},
    {421, "Service not available, closing control connection."},
    {425, "Can 't open data connection."},
    {426, "Connection closed; transfer aborted."},
    {450, "Requested file action not taken."},
    {451, "Requested action aborted: local error in processing."},
    {452, "Requested action not taken."},
    {500, "Syntax error, command unrecognized."},
    {501, "Syntax error in parameters or arguments."},
    {502, "Command not implemented."},
    {503, "Bad sequence of commands."},
    {504, "Command not implemented for that parameter."},
    {530, "Not logged in."},
    {532, "Need account for storing files."},
    {550, "Requested action not taken."},
    {551, "Requested action aborted: page type unknown."},
    {552, "Requested file action aborted."},
    {553, "Requested action not taken."},
};

bool HasCode(std::string_view line) {
  return line.size() > kCodeLength && std::all_of(line.begin(), line.begin() + kCodeLength,
                                                  [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

FtpState StateOfCommand(std::string_view command, FtpOperation operation) {
  for (const CommandState& each : kCommandStates) {
    if (each.command == command) return each.state;
  }
  if (std::find(kPreparing.begin(), kPreparing.end(), command) == kPreparing.end()) {
    return FtpState::kIdle;
  }
  switch (operation) {
    case FtpOperation::kDownloadFile:
      return FtpState::kRetrieving;
    case FtpOperation::kUploadFile:
      return FtpState::kStoring;
    case FtpOperation::kEnumFiles:
      return FtpState::kListing;
    default:
      return FtpState::kIdle;
  }
}

std::string_view FtpReplyText(int code) {
  for (const auto& [number, text] : kReplyTexts) {
    if (number == code) return text;
  }
  return {};
}

FtpReply ReadFtpReply(std::string_view received) {
  constexpr std::string_view kLineEnd = "\r\n";
  FtpReply reply;
  while (!received.empty()) {
    const size_t end = received.find(kLineEnd);
    const std::string_view line = received.substr(0, end);
    received.remove_prefix(end == std::string_view::npos ? received.size() : end + kLineEnd.size());
    if (!HasCode(line)) continue;
    if (line[kCodeLength] == '-') {
      reply.message += line.substr(kCodeLength + 1);
      reply.message += kLineEnd;
    } else if (line[kCodeLength] == ' ') {
      reply.code = ToInteger(line.substr(0, kCodeLength));
    }
  }
  return reply;
}

std::string PortArgument(std::string_view address, int32_t port) {
  return Replace(address, ".", ",") + "," + std::to_string(port / 256) + "," +
         std::to_string(port % 256);
}

PasvEnd PasvEndOf(std::string_view reply) {
  constexpr size_t kFields = 6;
  const size_t from = reply.find('(');
  const size_t to = reply.find(')');
  if (from == std::string_view::npos || to == std::string_view::npos || to < from) {
    throw RuntimeError(ErrorNumber::kInvalidCall);
  }
  const std::vector<std::string> fields = Split(reply.substr(from + 1, to - from - 1), ",");
  if (fields.size() < kFields) throw RuntimeError(ErrorNumber::kSubscriptOutOfRange);
  // Each is one byte of the port; more must not lead to another one in silence.
  const int high = ToInteger(fields[4]);
  const int low = ToInteger(fields[5]);
  const auto isByte = [](int value) { return value >= 0 && value <= 255; };
  if (!isByte(high) || !isByte(low)) throw RuntimeError(ErrorNumber::kOverflow);
  return {.host = fields[0] + "." + fields[1] + "." + fields[2] + "." + fields[3],
          .port = high * 256 + low};
}

std::optional<std::string> QuotedFolder(std::string_view reply) {
  const size_t from = reply.find('"');
  if (from == std::string_view::npos) return std::nullopt;
  const size_t to = reply.find('"', from + 1);
  if (to == std::string_view::npos) return std::nullopt;
  return Replace(reply.substr(from + 1, to - from - 1), "\\", "/");
}

}  // namespace quarnel
