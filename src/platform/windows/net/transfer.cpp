#include "platform/transfer.h"

#include "platform/windows/win32.h"
// After that one.
#include <winhttp.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "base/text.h"
#include "platform/windows/wide_text.h"

namespace quarnel {
namespace {

constexpr size_t kBufferSize = size_t{1} << 16;

struct InternetEnd {
  void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<void, InternetEnd>;

bool IsOneOf(DWORD number, std::initializer_list<DWORD> numbers) {
  for (const DWORD each : numbers) {
    if (each == number) return true;
  }
  return false;
}

int32_t TransferErrorOf(DWORD error, bool connected) {
  if (IsOneOf(error, {ERROR_WINHTTP_NAME_NOT_RESOLVED, ERROR_WINHTTP_CANNOT_CONNECT})) {
    return transfer_error::kNoConnection;
  }
  if (IsOneOf(error, {ERROR_WINHTTP_TIMEOUT, WSAETIMEDOUT})) {
    return connected ? transfer_error::kTooSlow : transfer_error::kNoConnection;
  }
  if (IsOneOf(error, {ERROR_WINHTTP_CONNECTION_ERROR, WSAECONNRESET, WSAECONNABORTED})) {
    return transfer_error::kBroken;
  }
  if (IsOneOf(error, {ERROR_WINHTTP_REDIRECT_FAILED, ERROR_WINHTTP_UNRECOGNIZED_SCHEME})) {
    return transfer_error::kRedirect;
  }
  if (IsOneOf(error, {ERROR_WINHTTP_SECURE_FAILURE, ERROR_WINHTTP_SECURE_CHANNEL_ERROR,
                      ERROR_WINHTTP_SECURE_CERT_DATE_INVALID, ERROR_WINHTTP_SECURE_CERT_CN_INVALID,
                      ERROR_WINHTTP_SECURE_INVALID_CA, ERROR_WINHTTP_SECURE_CERT_REV_FAILED,
                      ERROR_WINHTTP_SECURE_INVALID_CERT, ERROR_WINHTTP_SECURE_CERT_REVOKED,
                      ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE})) {
    return transfer_error::kNotTrusted;
  }
  return transfer_error::kBadAnswer;
}

// What threads of the system use as long as a request lives, which may be longer than the transfer.
struct Shared {
  std::mutex mutex;
  EventWait* events = nullptr;
  std::function<void(DWORD status, DWORD value)> told;  // used on the one thread alone
  std::array<char, kBufferSize> buffer{};

  void Post(EventWait::Ready work) {
    const std::lock_guard lock(mutex);
    if (events != nullptr) events->Post(std::move(work));
  }
};
using SharedRef = std::shared_ptr<Shared>;

// To another scheme than those that are followed.
bool LeadsAstray(std::wstring_view url) {
  const size_t scheme = url.find(L"://");
  if (scheme == std::wstring_view::npos) return false;
  const std::string name = ToLower(Narrow(url.substr(0, scheme)));
  return name != "http" && name != "https";
}

void CALLBACK Notified(HINTERNET request, DWORD_PTR context, DWORD status, void* information,
                       DWORD length) {
  auto* const shared = reinterpret_cast<SharedRef*>(context);
  if (shared == nullptr) return;
  if (status == WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING) {
    delete shared;
    return;
  }
  DWORD value = length;
  if (status == WINHTTP_CALLBACK_STATUS_REQUEST_ERROR) {
    value = static_cast<const WINHTTP_ASYNC_RESULT*>(information)->dwError;
  }
  if (status == WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE) {
    value = *static_cast<const DWORD*>(information);
  }
  if (status == WINHTTP_CALLBACK_STATUS_REDIRECT) {
    value = LeadsAstray(static_cast<const wchar_t*>(information)) ? 1 : 0;
  }
  if (status == WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE) {
    // Asked for here, since some systems wait for the answer in this call.
    if (WinHttpReceiveResponse(request, nullptr)) return;
    status = WINHTTP_CALLBACK_STATUS_REQUEST_ERROR;
    value = GetLastError();
  }
  (*shared)->Post([shared = *shared, status, value] {
    if (const auto told = shared->told) told(status, value);
  });
}

struct GlobalEnd {
  void operator()(wchar_t* text) const { GlobalFree(text); }
};
using GlobalText = std::unique_ptr<wchar_t, GlobalEnd>;

// The proxies that the user has set.
struct UserProxies {
  explicit UserProxies(const WINHTTP_CURRENT_USER_IE_PROXY_CONFIG& config)
      : detects(config.fAutoDetect != FALSE),
        script(config.lpszAutoConfigUrl),
        name(config.lpszProxy),
        bypass(config.lpszProxyBypass) {}
  static UserProxies Read() {
    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG config{};
    if (!WinHttpGetIEProxyConfigForCurrentUser(&config)) config = {};
    return UserProxies(config);
  }
  bool AreLookedUp() const { return detects || script != nullptr; }

  bool detects;
  GlobalText script;
  GlobalText name;
  GlobalText bypass;
};

void SetProxy(HINTERNET handle, wchar_t* name, wchar_t* bypass) {
  WINHTTP_PROXY_INFO info{WINHTTP_ACCESS_TYPE_NAMED_PROXY, name, bypass};
  WinHttpSetOption(handle, WINHTTP_OPTION_PROXY, &info, sizeof info);
}

struct Address {
  bool secure = false;
  std::wstring host;
  std::wstring path;
  INTERNET_PORT port = 0;

  // Which no proxy is asked for.
  bool IsOwnMachine() const { return host == L"localhost" || host.starts_with(L"127."); }
};

std::optional<Address> AddressOf(const std::wstring& url) {
  URL_COMPONENTS parts{};
  parts.dwStructSize = sizeof parts;
  parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = parts.dwSchemeLength =
      static_cast<DWORD>(-1);
  if (!WinHttpCrackUrl(url.c_str(), static_cast<DWORD>(url.size()), 0, &parts)) {
    return std::nullopt;
  }
  Address address;
  address.secure = parts.nScheme == INTERNET_SCHEME_HTTPS;
  address.host.assign(parts.lpszHostName, parts.dwHostNameLength);
  // What follows the path stands right behind it.
  address.path.assign(parts.lpszUrlPath, parts.dwUrlPathLength + parts.dwExtraInfoLength);
  address.port = parts.nPort;
  return address;
}

// Each step is asked for, and its end is told on a thread of the system's.
class WinHttpTransfer : public Transfer {
 public:
  WinHttpTransfer(EventWait& events, Files& files) : Transfer(events), files_(files) {}
  ~WinHttpTransfer() override { WinHttpTransfer::Abandon(); }

 protected:
  int32_t Begin(const Fetch& fetch) override {
    const std::wstring url = Wide(fetch.url);
    const auto address = AddressOf(url);
    if (!address) {
      return GetLastError() == ERROR_WINHTTP_UNRECOGNIZED_SCHEME ? transfer_error::kUnknownScheme
                                                                 : transfer_error::kBadAddress;
    }
    file_.emplace(files_, fetch);
    speed_.emplace(fetch.patience);
    shared_ = std::make_shared<Shared>();
    shared_->events = &events();
    shared_->told = [this](DWORD status, DWORD value) { Told(status, value); };
    session_ = InternetHandle(WinHttpOpen(L"Quarnel", WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, nullptr,
                                          nullptr, WINHTTP_FLAG_ASYNC));
    if (!session_) throw RuntimeError(ErrorNumber::kDeviceError);
    const int patience = static_cast<int>(fetch.patience.count() * 1000);
    WinHttpSetTimeouts(session_.get(), patience, patience, patience, patience);
    connection_.reset(WinHttpConnect(session_.get(), address->host.c_str(), address->port, 0));
    if (!connection_) throw RuntimeError(ErrorNumber::kDeviceError);
    request_.reset(WinHttpOpenRequest(connection_.get(), L"GET", address->path.c_str(), nullptr,
                                      WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
                                      address->secure ? WINHTTP_FLAG_SECURE : 0));
    if (!request_) throw RuntimeError(ErrorNumber::kDeviceError);
    SetOptions();
    ChooseProxy(url, address->IsOwnMachine());
    return 0;
  }

  void Abandon() override {
    if (shared_) {
      shared_->told = nullptr;
      const std::lock_guard lock(shared_->mutex);
      shared_->events = nullptr;
    }
    request_.reset();
    connection_.reset();
    session_.reset();
    file_.reset();
  }

 private:
  void SetOptions() {
    auto context = std::make_unique<SharedRef>(shared_);
    context_ = reinterpret_cast<DWORD_PTR>(context.get());
    WinHttpSetStatusCallback(request_.get(), Notified,
                             WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES |
                                 WINHTTP_CALLBACK_FLAG_CONNECT_TO_SERVER |
                                 WINHTTP_CALLBACK_FLAG_REDIRECT,
                             0);
    // From here on the request's end ends it.
    if (WinHttpSetOption(request_.get(), WINHTTP_OPTION_CONTEXT_VALUE, &context_,
                         sizeof context_)) {
      static_cast<void>(context.release());
    } else {
      throw RuntimeError(ErrorNumber::kDeviceError);
    }
    DWORD policy = WINHTTP_OPTION_REDIRECT_POLICY_DISALLOW_HTTPS_TO_HTTP;
    WinHttpSetOption(request_.get(), WINHTTP_OPTION_REDIRECT_POLICY, &policy, sizeof policy);
  }

  // A look-up may take seconds.
  void ChooseProxy(const std::wstring& url, bool ownMachine) {
    const auto proxies = std::make_shared<UserProxies>(UserProxies::Read());
    if (proxies->name) SetProxy(request_.get(), proxies->name.get(), proxies->bypass.get());
    if (ownMachine || !proxies->AreLookedUp()) return Send();
    std::thread([shared = shared_, session = session_, url, proxies] {
      WINHTTP_AUTOPROXY_OPTIONS options{};
      if (proxies->detects) {
        options.dwFlags |= WINHTTP_AUTOPROXY_AUTO_DETECT;
        options.dwAutoDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
      }
      if (proxies->script) {
        options.dwFlags |= WINHTTP_AUTOPROXY_CONFIG_URL;
        options.lpszAutoConfigUrl = proxies->script.get();
      }
      options.fAutoLogonIfChallenged = TRUE;
      WINHTTP_PROXY_INFO found{};
      if (!WinHttpGetProxyForUrl(session.get(), url.c_str(), &options, &found)) found = {};
      proxies->name.reset(found.lpszProxy);
      proxies->bypass.reset(found.lpszProxyBypass);
      shared->Post([shared, proxies] {
        if (shared->told) shared->told(0, 0);
      });
    }).detach();
    lookedUp_ = proxies;
  }

  void Send() {
    if (!WinHttpSendRequest(request_.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0,
                            WINHTTP_NO_REQUEST_DATA, 0, 0, context_)) {
      FailBySystem(GetLastError());
    }
  }

  void Told(DWORD status, DWORD value) {
    switch (status) {
      case 0:
        if (lookedUp_->name) {
          SetProxy(request_.get(), lookedUp_->name.get(), lookedUp_->bypass.get());
        }
        return Send();
      case WINHTTP_CALLBACK_STATUS_CONNECTING_TO_SERVER:
        return Reach(TransferStatus::kConnecting);
      case WINHTTP_CALLBACK_STATUS_CONNECTED_TO_SERVER:
        connected_ = true;
        return;
      case WINHTTP_CALLBACK_STATUS_REDIRECT:
        if (++redirects_ > kMostRedirects || value != 0) Fail(transfer_error::kRedirect);
        return;
      case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
        return TakeHeaders();
      case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
        return value == 0 ? TakeBody({}) : Read(value);
      case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        return TakeBody({shared_->buffer.data(), value});
      case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
        return FailBySystem(value);
      default:
        return;
    }
  }

  void FailBySystem(DWORD error) { Fail(TransferErrorOf(error, connected_)); }

  std::string Header(DWORD which) const {
    std::array<wchar_t, 256> text{};
    DWORD bytes = sizeof text - sizeof(wchar_t);
    if (!WinHttpQueryHeaders(request_.get(), which, WINHTTP_HEADER_NAME_BY_INDEX, text.data(),
                             &bytes, WINHTTP_NO_HEADER_INDEX)) {
      return {};
    }
    return Narrow(std::wstring_view(text.data(), bytes / sizeof(wchar_t)));
  }

  void TakeHeaders() {
    const long status = std::strtol(Header(WINHTTP_QUERY_STATUS_CODE).c_str(), nullptr, 10);
    // One that is not followed.
    if (status / 100 == 3 && !Header(WINHTTP_QUERY_LOCATION).empty()) {
      return Fail(transfer_error::kRedirect);
    }
    if (status != 200) return Fail(static_cast<int32_t>(status), Header(WINHTTP_QUERY_STATUS_TEXT));
    const int64_t total = std::strtoll(Header(WINHTTP_QUERY_CONTENT_LENGTH).c_str(), nullptr, 10);
    Reach(TransferStatus::kAnswered, total, 0);
    AwaitData();
  }

  // A read alone would wait until the buffer is full.
  void AwaitData() {
    if (!WinHttpQueryDataAvailable(request_.get(), nullptr)) FailBySystem(GetLastError());
  }

  void Read(DWORD available) {
    const DWORD count = std::min(available, static_cast<DWORD>(kBufferSize));
    if (!WinHttpReadData(request_.get(), shared_->buffer.data(), count, nullptr)) {
      FailBySystem(GetLastError());
    }
  }

  void TakeBody(std::string_view bytes) {
    if (bytes.empty()) {
      if (Done() < Total()) return Fail(transfer_error::kBroken);
      if (const int32_t error = file_->Flush(); error != 0) return Fail(error);
      Reach(TransferStatus::kReceiving);
      return Finish();
    }
    if (const int32_t error = file_->Write(bytes); error != 0) return Fail(error);
    Reach(TransferStatus::kReceiving, Total(), file_->Size());
    if (speed_->IsTooSlow(Done())) return Fail(transfer_error::kTooSlow);
    AwaitData();
  }

  Files& files_;
  std::optional<TransferFile> file_;
  std::optional<SpeedWatch> speed_;
  SharedRef shared_;
  // Also of the thread that looks proxies up.
  std::shared_ptr<void> session_;
  InternetHandle connection_;
  InternetHandle request_;
  std::shared_ptr<UserProxies> lookedUp_;
  DWORD_PTR context_ = 0;
  bool connected_ = false;
  int redirects_ = 0;
};

}  // namespace

std::unique_ptr<Transfer> MakeHttpTransfer(EventWait& events, Files& files) {
  return std::make_unique<WinHttpTransfer>(events, files);
}

}  // namespace quarnel
