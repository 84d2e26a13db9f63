#include "platform/transfer.h"

#include <curl/curl.h>
#include <sys/timerfd.h>

#include <map>
#include <optional>
#include <utility>

#include "base/text.h"
#include "platform/posix/unique_fd.h"

namespace quarnel {
namespace {

constexpr long kBufferSize = 256L * 1024;

struct EasyEnd {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct MultiEnd {
  void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};

int32_t TransferErrorOf(CURLcode code) {
  switch (code) {
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
      return transfer_error::kNoConnection;
    case CURLE_UNSUPPORTED_PROTOCOL:
      return transfer_error::kUnknownScheme;
    case CURLE_URL_MALFORMAT:
      return transfer_error::kBadAddress;
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
      return transfer_error::kBroken;
    case CURLE_OPERATION_TIMEDOUT:
      return transfer_error::kTooSlow;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
      return transfer_error::kNotTrusted;
    default:
      return transfer_error::kBadAnswer;
  }
}

std::string SchemeOf(std::string_view url) { return ToLower(url.substr(0, url.find(':'))); }

// The library asks to be told when its sockets are ready and when its time has come, and does
// nothing else meanwhile.
class CurlTransfer : public Transfer {
 public:
  CurlTransfer(EventWait& events, Files& files) : Transfer(events), files_(files) {}
  ~CurlTransfer() override { CurlTransfer::Abandon(); }

 protected:
  int32_t Begin(const Fetch& fetch) override {
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    const std::string scheme = SchemeOf(fetch.url);
    if (scheme != "http" && scheme != "https") return transfer_error::kUnknownScheme;
    file_.emplace(files_, fetch);
    timer_ = UniqueFd(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    multi_.reset(curl_multi_init());
    easy_.reset(curl_easy_init());
    if (ready != CURLE_OK || !timer_.Valid() || !multi_ || !easy_) {
      throw RuntimeError(ErrorNumber::kDeviceError);
    }
    timerWatch_ = events().Add(EventToken(timer_.Get()), {}, [this] { TimeHasCome(); });
    SetOptions(fetch);
    url_ = fetch.url;
    Ask();
    return 0;
  }

  void Abandon() override {
    if (easy_ && multi_) curl_multi_remove_handle(multi_.get(), easy_.get());
    easy_.reset();
    multi_.reset();
    for (const auto& [socket, watch] : watches_) events().Remove(watch);
    watches_.clear();
    if (timerWatch_) events().Remove(*std::exchange(timerWatch_, std::nullopt));
    timer_ = UniqueFd();
    file_.reset();
  }

 private:
  template <typename Value>
  void Set(CURLoption option, Value value) {
    curl_easy_setopt(easy_.get(), option, value);
  }

  void SetOptions(const Fetch& fetch) {
    const auto patience = static_cast<long>(fetch.patience.count());
    Set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    Set(CURLOPT_PROTOCOLS_STR, "http,https");
    Set(CURLOPT_USERAGENT, "Quarnel");
    Set(CURLOPT_NOSIGNAL, 1L);
    Set(CURLOPT_BUFFERSIZE, kBufferSize);
    Set(CURLOPT_CONNECTTIMEOUT, patience);
    Set(CURLOPT_LOW_SPEED_TIME, patience);
    Set(CURLOPT_LOW_SPEED_LIMIT, static_cast<long>(kSlowestTransfer));
    Set(CURLOPT_WRITEFUNCTION, &OnBody);
    Set(CURLOPT_WRITEDATA, this);
    Set(CURLOPT_HEADERFUNCTION, &OnHeader);
    Set(CURLOPT_HEADERDATA, this);
    Set(CURLOPT_SOCKOPTFUNCTION, &OnConnecting);
    Set(CURLOPT_SOCKOPTDATA, this);
    curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETFUNCTION, &OnSocket);
    curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_.get(), CURLMOPT_TIMERFUNCTION, &OnTimer);
    curl_multi_setopt(multi_.get(), CURLMOPT_TIMERDATA, this);
  }

  void Ask() {
    writeError_ = 0;
    passedOver_ = 0;
    reason_.clear();
    Set(CURLOPT_URL, url_.c_str());
    curl_multi_add_handle(multi_.get(), easy_.get());
  }

  // ---- what the library calls; nothing in them may touch the handles ---------------------------

  static int OnSocket(CURL*, curl_socket_t socket, int what, void* self, void*) {
    return static_cast<CurlTransfer*>(self)->Watch(socket, what), 0;
  }

  static int OnTimer(CURLM*, long milliseconds, void* self) {
    itimerspec when{};
    // A time of 0 would stop it.
    when.it_value.tv_sec = milliseconds < 0 ? 0 : milliseconds / 1000;
    when.it_value.tv_nsec = milliseconds < 0 ? 0 : milliseconds % 1000 * 1'000'000 + 1;
    timerfd_settime(static_cast<CurlTransfer*>(self)->timer_.Get(), 0, &when, nullptr);
    return 0;
  }

  static int OnConnecting(void* self, curl_socket_t, curlsocktype) {
    static_cast<CurlTransfer*>(self)->Reach(TransferStatus::kConnecting);
    return CURL_SOCKOPT_OK;
  }

  static size_t OnHeader(char* bytes, size_t, size_t count, void* self) {
    const std::string_view line(bytes, count);
    if (line.starts_with("HTTP/")) static_cast<CurlTransfer*>(self)->TakeReason(line);
    return count;
  }

  static size_t OnBody(const char* bytes, size_t, size_t count, void* self) {
    return static_cast<CurlTransfer*>(self)->TakeBody({bytes, count}) ? count : 0;
  }

  void Watch(curl_socket_t socket, int what) {
    const auto known = watches_.find(socket);
    if (what == CURL_POLL_REMOVE) {
      if (known == watches_.end()) return;
      events().Remove(known->second);
      watches_.erase(known);
      return;
    }
    const EventInterest interest{.read = (what & CURL_POLL_IN) != 0,
                                 .write = (what & CURL_POLL_OUT) != 0};
    if (known != watches_.end()) return events().Change(known->second, interest);
    watches_[socket] = events().Add(EventToken(socket), interest, [this, socket] { Act(socket); });
  }

  // "HTTP/1.1 404 Not Found"
  void TakeReason(std::string_view line) {
    line = line.substr(0, line.find_first_of("\r\n"));
    const size_t code = line.find(' ');
    const size_t text = code == std::string_view::npos ? code : line.find(' ', code + 1);
    reason_ = text == std::string_view::npos ? std::string_view() : line.substr(text + 1);
  }

  bool TakeBody(std::string_view bytes) {
    if (Status() != 200) return PassOver(bytes.size());
    writeError_ = file_->Write(bytes);
    if (writeError_ != 0) return false;
    Reach(TransferStatus::kReceiving, Expected(), file_->Size());
    return true;
  }

  // What comes with any other answer is not what was asked for. The library tells where a redirect
  // leads when it has seen its end, for which it may not need long.
  bool PassOver(size_t count) {
    constexpr size_t kMost = size_t{1} << 16;
    passedOver_ += count;
    return Status() / 100 == 3 && passedOver_ <= kMost;
  }

  // ---- what happens ----------------------------------------------------------------------------

  void TimeHasCome() {
    uint64_t times = 0;
    static_cast<void>(read(timer_.Get(), &times, sizeof times));
    Act(CURL_SOCKET_TIMEOUT);
  }

  void Act(curl_socket_t socket) {
    int running = 0;
    curl_multi_socket_action(multi_.get(), socket, 0, &running);
    int left = 0;
    const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left);
    if (message != nullptr && message->msg == CURLMSG_DONE) Ends(message->data.result);
  }

  long Status() const {
    long status = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
  }

  int64_t Expected() const {
    curl_off_t total = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &total);
    return total < 0 ? 0 : total;
  }

  bool HadConnection() const {
    curl_off_t moment = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_CONNECT_TIME_T, &moment);
    return moment > 0;
  }

  void Ends(CURLcode result) {
    const long status = Status();
    const char* next = nullptr;
    curl_easy_getinfo(easy_.get(), CURLINFO_REDIRECT_URL, &next);
    if (next != nullptr) return Redirect(next);
    if (writeError_ != 0) return Fail(writeError_);
    if (status != 0 && status != 200) return Fail(static_cast<int32_t>(status), reason_);
    if (result == CURLE_OK && status == 200) {
      if (const int32_t error = file_->Flush(); error != 0) return Fail(error);
      Reach(TransferStatus::kReceiving, Expected(), file_->Size());
      return Finish();
    }
    if (result == CURLE_OPERATION_TIMEDOUT && !HadConnection()) {
      return Fail(transfer_error::kNoConnection);
    }
    Fail(TransferErrorOf(result));
  }

  void Redirect(const std::string& next) {
    const std::string scheme = SchemeOf(next);
    if (++redirects_ > kMostRedirects || (scheme != "https" && scheme != SchemeOf(url_))) {
      return Fail(transfer_error::kRedirect);
    }
    curl_multi_remove_handle(multi_.get(), easy_.get());
    url_ = next;
    Ask();
  }

  Files& files_;
  std::optional<TransferFile> file_;
  UniqueFd timer_;
  std::optional<EventWait::Id> timerWatch_;
  std::map<curl_socket_t, EventWait::Id> watches_;
  std::unique_ptr<CURLM, MultiEnd> multi_;
  std::unique_ptr<CURL, EasyEnd> easy_;
  std::string url_;
  std::string reason_;
  int redirects_ = 0;
  size_t passedOver_ = 0;
  int32_t writeError_ = 0;
};

}  // namespace

std::unique_ptr<Transfer> MakeHttpTransfer(EventWait& events, Files& files) {
  return std::make_unique<CurlTransfer>(events, files);
}

}  // namespace quarnel
