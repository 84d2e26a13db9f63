#include "platform/transfer.h"

#include <vector>

#include "platform/event_wait.h"
#include "support/loopback_http.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using namespace std::chrono_literals;

class TransferTest : public PlatformTest {
 protected:
  // The phases that were told, each once: "0123" and 4 or 5.
  std::string Run(const Fetch& fetch) {
    transfer = MakeHttpTransfer(*events, files());
    told.clear();
    transfer->OnProgress = [this](TransferStatus status, int64_t total, int64_t done) {
      const char digit = static_cast<char>('0' + static_cast<int>(status));
      if (told.empty() || told.back() != digit) told += digit;
      last = {total, done};
    };
    if (transfer->Start(fetch) != 0) return "none";
    EXPECT_EQ(told, "");
    Wait([this] { return Ended(); });
    return told;
  }
  std::string Run(std::string_view path) { return Run({server.Url(path), Path("got"), 5'000'000}); }
  bool Ended() const { return told.ends_with('4') || told.ends_with('5'); }
  void Wait(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!condition() && std::chrono::steady_clock::now() < end) events->Wait(100ms);
  }

  std::unique_ptr<EventWait> events = MakeEventWait();
  std::unique_ptr<Sockets> sockets = MakeSockets(*events);
  LoopbackHttp server{*sockets};
  std::unique_ptr<Transfer> transfer;
  std::string told;
  std::pair<int64_t, int64_t> last;
};

TEST_F(TransferTest, WritesTheBodyAndTellsEachPhase) {
  std::string large;
  for (int i = 0; i < 3'000'000; ++i) large += static_cast<char>(i * 7);
  server.answers["/large"] = LoopbackHttp::Ok(large);
  server.answers["/chunks"] =
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\none\r\n4\r\n two\r\n0\r\n\r\n";
  server.answers["/open"] = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\ntill the end";
  server.answers["/empty"] = LoopbackHttp::Ok("");
  // What is packed stays so: a body is what the server has.
  server.answers["/packed"] =
      "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 3\r\n\r\n\x1F\x8BX";
  server.answers["/there"] = LoopbackHttp::RedirectTo(server.Url("/large"));
  server.answers["/relative"] = LoopbackHttp::RedirectTo("/there");
  Make("got", std::string(4'000'000, 'x'));
  const std::tuple<const char*, std::string, int64_t> cases[] = {
      {"/large", large, 3'000'000},    {"/chunks", "one two", 0},
      {"/open", "till the end", 0},    {"/empty", "", 0},
      {"/packed", "\x1F\x8BX", 3},     {"/there", large, 3'000'000},
      {"/relative", large, 3'000'000},
  };
  for (const auto& [path, body, total] : cases) {
    EXPECT_EQ(Run(path), "01234") << path << transfer->ErrorText();
    EXPECT_TRUE(Read(Path("got")) == body) << path;
    EXPECT_EQ(last, std::pair(total, static_cast<int64_t>(body.size()))) << path;
    EXPECT_EQ(transfer->ErrorNumber(), 0);
  }
  EXPECT_EQ(Run("/empty?202403051234"), "01234");
  EXPECT_TRUE(server.heard.ends_with("GET /empty?202403051234 HTTP/1.1\n"));
}

TEST_F(TransferTest, FailsByNumberAndText) {
  server.answers["/500"] = "HTTP/1.1 500 Out of order\r\nContent-Length: 2\r\n\r\nno";
  server.answers["/204"] = "HTTP/1.1 204 Nothing\r\n\r\n";
  server.answers["/loop"] = LoopbackHttp::RedirectTo("/loop");
  server.answers["/away"] = LoopbackHttp::RedirectTo("ftp://127.0.0.1/x");
  server.answers["/file"] = LoopbackHttp::RedirectTo("file:///etc/passwd");
  server.answers["/cut"] = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.";
  server.answers["/nothing"] = "";
  server.answers["/large"] = LoopbackHttp::Ok(std::string(6'000'000, 'x'));
  const std::tuple<const char*, int32_t, const char*> cases[] = {
      {"/none", 404, "Not Found"},
      {"/500", 500, "Out of order"},
      {"/204", 204, "Nothing"},
      {"/loop", transfer_error::kRedirect, nullptr},
      {"/away", transfer_error::kRedirect, nullptr},
      {"/file", transfer_error::kRedirect, nullptr},
      {"/cut", transfer_error::kBroken, nullptr},
      {"/nothing", transfer_error::kBadAnswer, nullptr},
      {"/large", transfer_error::kTooLarge, nullptr},
  };
  for (const auto& [path, number, text] : cases) {
    EXPECT_TRUE(Run(path).ends_with('5')) << path;
    EXPECT_EQ(transfer->ErrorNumber(), number) << path;
    EXPECT_EQ(transfer->ErrorText(), text == nullptr ? TransferErrorText(number) : text);
    // Nothing but a good answer reaches the file.
    const std::string body = Read(Path("got"));
    EXPECT_TRUE(body.empty() || body == "ten bytes." || body.starts_with("xxx")) << path;
  }
}

TEST_F(TransferTest, TellsThatThereIsNoConnection) {
  const std::string url = [&] {
    const LoopbackHttp gone(*sockets);
    return gone.Url("/");
  }();
  for (const std::string& each : {url, std::string("http://no..name/")}) {
    EXPECT_TRUE(Run({each, Path("got")}).ends_with('5')) << each;
    EXPECT_EQ(transfer->ErrorNumber(), -2147352560) << each;
  }
}

TEST_F(TransferTest, WhatCannotBeginHasNoEvents) {
  EXPECT_EQ(Run({"ftp://127.0.0.1/x", Path("got")}), "none");
  EXPECT_EQ(transfer->ErrorNumber(), transfer_error::kUnknownScheme);
  EXPECT_EQ(Run({server.Url("/x"), Path("no folder\\got")}), "none");
  EXPECT_EQ(transfer->ErrorNumber(), static_cast<int32_t>(ErrorNumber::kPathNotFound));
  EXPECT_EQ(told, "");
}

TEST_F(TransferTest, GivesUpOnAServerThatFallsSilent) {
  server.answers["/slow"] = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.";
  server.unfinished.insert("/slow");
  EXPECT_TRUE(
      Run({.url = server.Url("/slow"), .path = Path("got"), .patience = 1s}).ends_with('5'));
  EXPECT_EQ(transfer->ErrorNumber(), transfer_error::kTooSlow);
}

TEST_F(TransferTest, IsCancelledOnceAndEndedAnyTime) {
  server.answers["/slow"] = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.";
  server.unfinished.insert("/slow");
  const auto start = [&](const std::function<void(TransferStatus)>& onStatus) {
    transfer = MakeHttpTransfer(*events, files());
    told.clear();
    transfer->OnProgress = [this, onStatus](TransferStatus status, int64_t, int64_t) {
      told += static_cast<char>('0' + static_cast<int>(status));
      onStatus(status);
    };
    EXPECT_EQ(transfer->Start({server.Url("/slow"), Path("got")}), 0);
  };
  start([](TransferStatus) {});
  Wait([this] { return told.ends_with('3'); });
  transfer->Cancel();
  transfer->Cancel();
  EXPECT_TRUE(told.ends_with('3'));
  Wait([this] { return Ended(); });
  EXPECT_TRUE(told.ends_with("35"));
  EXPECT_EQ(transfer->ErrorNumber(), transfer_error::kCancelled);
  // The file is free again.
  files().Delete(Path("got"));
  // One that ends in its own event, and one while it is under way, tell nothing more.
  start([this](TransferStatus status) {
    if (status == TransferStatus::kReceiving) transfer.reset();
  });
  Wait([this] { return transfer == nullptr; });
  EXPECT_TRUE(told.ends_with('3'));
  start([](TransferStatus) {});
  events->Wait(5ms);
  transfer.reset();
  told.clear();
  events->Wait(50ms);
  EXPECT_EQ(told, "");
}

}  // namespace
}  // namespace quarnel
