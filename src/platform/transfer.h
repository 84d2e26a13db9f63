#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "base/event_wait.h"
#include "platform/files.h"

namespace quarnel {

// How far a transfer has come; each is told at least once, in this order, up to one of the last
// two.
enum class TransferStatus {
  kResolving,
  kConnecting,
  kAnswered,  // the size is known, if the server tells it
  kReceiving,
  kFinished,
  kFailed,
};

// The numbers of errors are the same on every system. A status of HTTP other than 200 stands for
// itself, and so does an ErrorNumber of the file that is written.
namespace transfer_error {
inline constexpr int32_t kNoConnection = static_cast<int32_t>(0x80020010);
inline constexpr int32_t kTooLarge = 223;
inline constexpr int32_t kTooSlow = 12002;
inline constexpr int32_t kBadAddress = 12005;
inline constexpr int32_t kUnknownScheme = 12006;
inline constexpr int32_t kCancelled = 12017;
inline constexpr int32_t kBroken = 12030;  // it ended before its end
inline constexpr int32_t kBadAnswer = 12152;
inline constexpr int32_t kRedirect = 12156;  // too many, or to where none may lead
inline constexpr int32_t kNotTrusted = 12175;
}  // namespace transfer_error

// What is told of an error where nothing is known about it but the number.
std::string_view TransferErrorText(int32_t number);

struct Fetch {
  std::string url;
  std::string path;  // of the file, which is made or emptied
  int64_t mostBytes = std::numeric_limits<int64_t>::max();
  // For how long a connection may take, and a body come at less than 100 bytes a second.
  std::chrono::seconds patience{60};
};

// One fetch of a file, which is written as it arrives. Everything comes while events are processed,
// nothing during a call; an event may end the object. One that ends gives up without an event.
class Transfer {
 public:
  explicit Transfer(EventWait& events);
  virtual ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // `total` is 0 where the server does not tell it. The file is closed before the end is told; what
  // a failed transfer has brought stays in it.
  std::function<void(TransferStatus, int64_t total, int64_t done)> OnProgress;

  // 0 when it has begun, else the number of an error, and nothing follows. Once for each object.
  int32_t Start(const Fetch& fetch);
  // It fails as kCancelled, unless it has ended.
  void Cancel();

  int32_t ErrorNumber() const { return errorNumber_; }
  const std::string& ErrorText() const { return errorText_; }

 protected:
  virtual int32_t Begin(const Fetch& fetch) = 0;
  // Gives up what is under way: nothing of it comes any more.
  virtual void Abandon() = 0;

  // For whoever does the work, on the one thread. After an end nothing is taken any more.
  void Reach(TransferStatus status) { Reach(status, total_, done_); }
  void Reach(TransferStatus status, int64_t total, int64_t done);
  void Finish();
  void Fail(int32_t number, std::string_view text = {});
  bool Ended() const { return reached_ >= TransferStatus::kFinished; }
  const Fetch& fetch() const { return fetch_; }
  EventWait& events() { return events_; }
  int64_t Total() const { return total_; }
  int64_t Done() const { return done_; }

 private:
  struct Owner;
  void TellLater();
  void Tell(const std::shared_ptr<Owner>& owner);

  EventWait& events_;
  std::shared_ptr<Owner> owner_;
  Fetch fetch_;
  TransferStatus reached_ = TransferStatus::kResolving;
  TransferStatus next_ = TransferStatus::kResolving;  // the next to tell
  int64_t total_ = 0;
  int64_t done_ = 0;
  bool started_ = false;
  bool willTell_ = false;
  std::chrono::steady_clock::time_point lastTold_;
  bool endTold_ = false;
  int32_t errorNumber_ = 0;
  std::string errorText_;
};

// The file of a transfer, written in large pieces. Both operations return the number of an error, 0
// when there is none.
class TransferFile {
 public:
  // Raises RuntimeError as Files::Open does.
  TransferFile(Files& files, const Fetch& fetch);
  ~TransferFile() { Flush(); }
  TransferFile(const TransferFile&) = delete;
  TransferFile& operator=(const TransferFile&) = delete;

  int32_t Write(std::string_view bytes);
  int32_t Flush();
  int64_t Size() const { return size_; }

 private:
  std::string piece_;
  std::unique_ptr<File> file_;
  int64_t most_;
  int64_t size_ = 0;
};

// Whether bytes come too slowly to be waited for, in spans as long as the patience.
class SpeedWatch {
 public:
  explicit SpeedWatch(std::chrono::seconds patience) : patience_(patience) {}
  bool IsTooSlow(int64_t done);

 private:
  std::chrono::seconds patience_;
  std::chrono::steady_clock::time_point since_ = std::chrono::steady_clock::now();
  int64_t before_ = 0;
};

inline constexpr int64_t kSlowestTransfer = 100;  // bytes a second
inline constexpr int kMostRedirects = 5;

// By HTTP, with or without TLS, through the proxies that the system or the user has set. At most
// five redirects are followed, none of which leads to another scheme but https.
std::unique_ptr<Transfer> MakeHttpTransfer(EventWait& events, Files& files);

}  // namespace quarnel
