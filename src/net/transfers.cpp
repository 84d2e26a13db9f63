#include "net/transfers.h"

#include <algorithm>
#include <utility>

#include "base/hex.h"
#include "base/text.h"
#include "net/ftp_transfer.h"

namespace quarnel {
namespace {

constexpr std::string_view kFtp = "ftp://";

// "%20" is a blank. Nothing may end the command that it becomes part of.
std::string Decoded(std::string_view text) {
  std::string decoded;
  while (!text.empty()) {
    char c = text.front();
    size_t length = 1;
    if (c == '%') {
      length = 3;
      const auto bytes = text.size() < length ? std::nullopt : BytesFromHex(text.substr(1, 2));
      if (!bytes) throw RuntimeError(ErrorNumber::kInvalidCall);
      c = bytes->front();
    }
    if (c == '\r' || c == '\n' || c == '\0') throw RuntimeError(ErrorNumber::kInvalidCall);
    decoded += c;
    text.remove_prefix(length);
  }
  return decoded;
}

}  // namespace

FtpAddress FtpAddressOf(std::string_view url) {
  if (!StartsWithText(url, kFtp)) throw RuntimeError(ErrorNumber::kInvalidCall);
  url.remove_prefix(kFtp.size());
  const size_t slash = std::min(url.find('/'), url.size());
  std::string_view place = url.substr(0, slash);
  std::string_view path = url.substr(slash);
  path = path.substr(0, path.find_first_of("?#"));
  FtpAddress address{.user = "anonymous", .password = "anonymous@"};
  if (const size_t at = place.rfind('@'); at != std::string_view::npos) {
    const std::string_view who = place.substr(0, at);
    const size_t colon = std::min(who.find(':'), who.size());
    address.user = Decoded(who.substr(0, colon));
    address.password = colon == who.size() ? std::string() : Decoded(who.substr(colon + 1));
    place.remove_prefix(at + 1);
  }
  if (const size_t colon = place.find(':'); colon != std::string_view::npos) {
    address.port = ToLong(place.substr(colon + 1));
    place = place.substr(0, colon);
  }
  address.host = Decoded(place);
  address.path = path.empty() ? std::string() : Decoded(path.substr(1));
  if (address.host.empty() || address.path.empty() || address.port < 1 || address.port > 65'535) {
    throw RuntimeError(ErrorNumber::kInvalidCall);
  }
  return address;
}

Transfers::Transfers(FtpSupport& ftp) : ftp_(ftp), retired_(std::make_shared<Retired>()) {}

std::unique_ptr<Transfer> Transfers::For(std::string_view url) {
  retired_->EndIdle();
  if (StartsWithText(url, kFtp)) return std::make_unique<FtpTransfer>(ftp_, retired_);
  return MakeHttpTransfer(ftp_.host().events(), ftp_.files());
}

void Transfers::Retired::Add(std::unique_ptr<CFtpClient> client) {
  clients_.push_back(std::move(client));
}

void Transfers::Retired::EndIdle() {
  std::erase_if(clients_, [](const auto& client) { return !client->Waits(); });
}

}  // namespace quarnel
