#include "platform/transfer.h"

#include <algorithm>
#include <utility>

namespace quarnel {

std::string_view TransferErrorText(int32_t number) {
  static constexpr std::pair<int32_t, std::string_view> kTexts[] = {
      {transfer_error::kNoConnection, "No connection to the server."},
      {transfer_error::kTooLarge, "The file is larger than it may be."},
      {transfer_error::kTooSlow, "The server is too slow."},
      {transfer_error::kBadAddress, "The address is not valid."},
      {transfer_error::kUnknownScheme, "The address is of an unknown kind."},
      {transfer_error::kCancelled, "Cancelled."},
      {transfer_error::kBroken, "The connection was closed too early."},
      {transfer_error::kBadAnswer, "The server's answer is not valid."},
      {transfer_error::kRedirect, "The server leads nowhere."},
      {transfer_error::kNotTrusted, "The server's certificate is not trusted."},
  };
  for (const auto& [known, text] : kTexts) {
    if (known == number) return text;
  }
  return "The transfer failed.";
}

// Outlives the transfer for as long as something is posted.
struct Transfer::Owner {
  Transfer* transfer;
};

Transfer::Transfer(EventWait& events)
    : events_(events), owner_(std::make_shared<Owner>(Owner{this})) {}

Transfer::~Transfer() { owner_->transfer = nullptr; }

int32_t Transfer::Start(const Fetch& fetch) {
  fetch_ = fetch;
  int32_t error = 0;
  try {
    error = Begin(fetch_);
    if (error != 0) errorText_ = TransferErrorText(error);
  } catch (const RuntimeError& failure) {
    error = static_cast<int32_t>(failure.Number());
    errorText_ = failure.Description();
  }
  if (error == 0) {
    started_ = true;
    TellLater();
    return 0;
  }
  Abandon();
  return errorNumber_ = error;
}

void Transfer::Cancel() {
  if (started_) Fail(transfer_error::kCancelled);
}

void Transfer::Reach(TransferStatus status, int64_t total, int64_t done) {
  if (Ended()) return;
  total_ = total;
  done_ = done;
  if (status > reached_) {
    reached_ = status;
    return TellLater();
  }
  // Nobody sees more of it.
  constexpr auto kOften = std::chrono::milliseconds(20);
  const auto now = std::chrono::steady_clock::now();
  if (now - lastTold_ < kOften) return;
  lastTold_ = now;
  TellLater();
}

void Transfer::Finish() {
  if (Ended()) return;
  Abandon();
  Reach(TransferStatus::kFinished);
}

void Transfer::Fail(int32_t number, std::string_view text) {
  if (Ended()) return;
  Abandon();
  errorNumber_ = number;
  errorText_ = text.empty() ? TransferErrorText(number) : text;
  // Not every phase on the way to here has been.
  next_ = TransferStatus::kFailed;
  Reach(TransferStatus::kFailed);
}

void Transfer::TellLater() {
  if (std::exchange(willTell_, true)) return;
  events_.Post([owner = owner_] {
    if (owner->transfer != nullptr) owner->transfer->Tell(owner);
  });
}

void Transfer::Tell(const std::shared_ptr<Owner>& owner) {
  willTell_ = false;
  // A handler may end or cancel it, and process events itself.
  while (owner->transfer != nullptr && !endTold_) {
    const TransferStatus status = std::min(next_, reached_);
    const bool last = status == reached_;
    endTold_ = last && Ended();
    if (!last) next_ = static_cast<TransferStatus>(static_cast<int>(status) + 1);
    if (const auto raise = OnProgress) raise(status, total_, done_);
    if (last) return;
  }
}

// ---- helpers of the backends -------------------------------------------------------------------

TransferFile::TransferFile(Files& files, const Fetch& fetch)
    : file_(files.Open(fetch.path, OpenMode::kCreate)), most_(fetch.mostBytes) {}

int32_t TransferFile::Write(std::string_view bytes) {
  constexpr size_t kPiece = size_t{1} << 18;
  size_ += static_cast<int64_t>(bytes.size());
  if (size_ > most_) return transfer_error::kTooLarge;
  piece_ += bytes;
  return piece_.size() < kPiece ? 0 : Flush();
}

int32_t TransferFile::Flush() {
  try {
    if (!piece_.empty()) file_->Write(piece_);
    piece_.clear();
  } catch (const RuntimeError& error) {
    piece_.clear();
    return static_cast<int32_t>(error.Number());
  }
  return 0;
}

bool SpeedWatch::IsTooSlow(int64_t done) {
  const auto now = std::chrono::steady_clock::now();
  if (now - since_ < patience_) return false;
  const bool slow = done - before_ < kSlowestTransfer * patience_.count();
  since_ = now;
  before_ = done;
  return slow;
}

}  // namespace quarnel
