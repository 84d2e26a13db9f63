#include <cstdlib>

#include "platform/event_wait.h"
#include "platform/transfer.h"
#include "support/loopback_http.h"
#include "support/platform_fixture.h"

namespace quarnel {
namespace {

using PosixTransferTest = PlatformTest;

TEST_F(PosixTransferTest, AsksTheProxyOfTheUser) {
  const std::unique_ptr<EventWait> events = MakeEventWait();
  const std::unique_ptr<Sockets> sockets = MakeSockets(*events);
  LoopbackHttp proxy(*sockets);
  proxy.answers["http://updates.example/file"] = LoopbackHttp::Ok("through it");
  setenv("http_proxy", proxy.Url("/").c_str(), 1);
  const std::unique_ptr<Transfer> transfer = MakeHttpTransfer(*events, files());
  bool ended = false;
  transfer->OnProgress = [&](TransferStatus status, int64_t, int64_t) {
    ended = status >= TransferStatus::kFinished;
  };
  EXPECT_EQ(transfer->Start({"http://updates.example/file", Path("got")}), 0);
  for (int turn = 0; turn < 200 && !ended; ++turn) events->Wait(std::chrono::milliseconds(100));
  unsetenv("http_proxy");
  EXPECT_EQ(Read(Path("got")), "through it");
}

}  // namespace
}  // namespace quarnel
