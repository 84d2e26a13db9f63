#include "net/c_socket.h"

#include <memory>
#include <utility>

#include "net/c_timeout.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using namespace std::chrono_literals;

// A socket that notes its events.
struct Noting {
  explicit Noting(SocketSupport& support) : socket(support) {
    socket.OnConnect = [this] { Note("connect"); };
    socket.OnDataArrival = [this](int32_t bytes) {
      Note("data" + std::to_string(bytes));
      received += std::get<std::string>(socket.GetData());
    };
    socket.OnClose = [this] { Note("close"); };
    socket.OnSendComplete = [this] { ++complete; };
    socket.OnSendProgress = [this](int32_t sent, int32_t) { progress += sent; };
    socket.OnError = [this] { Note("error"); };
  }
  void Note(const std::string& text) { notes += text + " "; }
  std::string Taken() { return std::exchange(notes, {}); }

  CSocket socket;
  std::string notes;
  std::string received;
  int complete = 0;
  int64_t progress = 0;
};

class SocketTest : public PlatformTest {
 protected:
  bool Until(const std::function<bool()>& condition) {
    const Host::UnderWay underWay(host);
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!condition() && std::chrono::steady_clock::now() < end) host.Step(100ms);
    return condition();
  }
  bool Until(const CSocket& socket, SocketState state) {
    return Until([&] { return socket.State() == state; });
  }
  // The port on which it listens: the next one that is free.
  int32_t Listen(CSocket& server) {
    static int32_t port = 42'000;
    do {
      server.CloseSocket();
      server.SetLocalPort(++port);
      server.Listen();
    } while (server.State() != SocketState::kListening && port < 60'000);
    return port;
  }
  // Two ends of one connection.
  void Join(Noting& client, Noting& peer, std::string_view name = "127.0.0.1") {
    CSocket server(support);
    const int32_t port = Listen(server);
    bool accepted = false;
    server.OnConnectionRequest = [&](SocketHandle request) {
      peer.socket.Accept(request);
      accepted = true;
    };
    client.socket.Connect(name, port);
    ASSERT_TRUE(
        Until([&] { return accepted && client.socket.State() == SocketState::kConnected; }));
    EXPECT_EQ(client.Taken(), "connect ");
    EXPECT_EQ(client.socket.RemoteHostIP(), "127.0.0.1");
    EXPECT_EQ(client.socket.RemotePort(), port);
    EXPECT_EQ(peer.socket.LocalPort(), port);
    EXPECT_EQ(peer.socket.RemotePort(), client.socket.LocalPort());
    EXPECT_EQ(peer.socket.State(), SocketState::kConnected);
  }

  TestHost host;
  ErrorLog log{files(), machine(), host, "QuarnelTest"};
  std::unique_ptr<Sockets> sockets = MakeSockets(host.events());
  SocketSupport support{*sockets, log};
};

TEST_F(SocketTest, ConnectsByAddressAndByNameAndAgain) {
  Noting client(support);
  for (const auto& [name, first] : {std::pair("127.0.0.1", SocketState::kConnecting),
                                    std::pair("localhost", SocketState::kResolvingHost)}) {
    Noting peer(support);
    Join(client, peer, name);
    client.socket.SendData(std::string("hello"));
    ASSERT_TRUE(Until([&] { return peer.received == "hello"; })) << name;
    EXPECT_EQ(client.progress, 5);
    ASSERT_TRUE(Until([&] { return client.complete > 0; }));
    // The end that closes waits for the other.
    client.socket.CloseSocket();
    EXPECT_EQ(client.socket.State(), SocketState::kClosing);
    ASSERT_TRUE(Until(peer.socket, SocketState::kClosed));
    EXPECT_EQ(peer.Taken(), "data5 close ");
    ASSERT_TRUE(Until(client.socket, SocketState::kClosed));
    EXPECT_EQ(client.Taken(), "close ");
    EXPECT_EQ(client.socket.Handle(), kNoSocket);
    client.progress = client.complete = 0;
    // Nobody listens there any more: an error in silence.
    client.socket.Connect(name, client.socket.RemotePort());
    EXPECT_EQ(client.socket.State(), first);
    ASSERT_TRUE(Until(client.socket, SocketState::kError));
    EXPECT_EQ(client.socket.Handle(), kNoSocket);
    EXPECT_EQ(client.Taken(), "");
  }
  client.socket.Connect("no such name", 80);
  ASSERT_TRUE(Until(client.socket, SocketState::kError));
  EXPECT_EQ(client.Taken(), "");
}

TEST_F(SocketTest, DeliversAllBeforeTheEnd) {
  Noting client(support);
  Noting peer(support);
  Join(client, peer);
  std::string much;
  for (int i = 0; i < 500'000; ++i) much += std::to_string(i) + " ";
  peer.socket.OnSendComplete = [&] {
    if (peer.progress == static_cast<int64_t>(much.size())) peer.socket.CloseSocket();
  };
  peer.socket.SendData(much);
  ASSERT_TRUE(Until(client.socket, SocketState::kClosed));
  EXPECT_EQ(client.received.size(), much.size());
  EXPECT_TRUE(client.received == much);
  EXPECT_TRUE(client.notes.ends_with(" close "));
}

TEST_F(SocketTest, PeeksAndTakesByLengthAndType) {
  Noting client(support);
  Noting peer(support);
  Join(client, peer);
  client.socket.OnDataArrival = nullptr;
  peer.socket.SendData(int32_t{0x04030201});
  peer.socket.SendData({});
  ASSERT_TRUE(Until([&] { return client.socket.BytesReceived() == 4; }));
  EXPECT_EQ(client.socket.PeekData(SocketType::kInteger), SocketValue(int16_t{0x0201}));
  EXPECT_EQ(client.socket.GetData(SocketType::kNone, 1), SocketValue(std::string("\x01")));
  EXPECT_EQ(client.socket.BytesReceived(), 3);
  EXPECT_EQ(client.socket.GetData(SocketType::kBytes, 9), SocketValue(ByteArray{2, 3, 4}));
  EXPECT_EQ(client.socket.GetData(), SocketValue(std::string()));
  sockets->Close(peer.socket.Handle());
  EXPECT_THROW(peer.socket.SendData(std::string("x")), RuntimeError);
}

TEST_F(SocketTest, AHandlerMayEndItsSocket) {
  auto client = std::make_unique<Noting>(support);
  Noting peer(support);
  Join(*client, peer);
  client->socket.OnDataArrival = [&](int32_t) { client.reset(); };
  peer.socket.SendData(std::string("x"));
  ASSERT_TRUE(Until([&] { return client == nullptr; }));
  EXPECT_TRUE(Until([&] { return peer.socket.State() != SocketState::kConnected; }));
}

TEST_F(SocketTest, DatagramsGoByAddressAndByName) {
  Noting one(support);
  Noting two(support);
  for (Noting* each : {&one, &two}) each->socket.SetProtocol(SocketProtocol::kUdp);
  one.socket.Bind(42'001);
  two.socket.Bind(42'002, "127.0.0.1");
  one.socket.SetRemotePort(42'002);
  one.socket.SetRemoteHost("localhost");
  one.socket.SendData(std::string("by name"));
  ASSERT_TRUE(Until([&] { return two.received == "by name"; }));
  EXPECT_EQ(one.socket.RemoteHostIP(), "127.0.0.1");
  EXPECT_EQ(two.socket.RemotePort(), 42'001);
  two.socket.SendData(std::string("back"));
  ASSERT_TRUE(Until([&] { return one.received == "back"; }));
  // Without the option the system refuses this address; it goes with the address.
  one.socket.SetRemoteHost("127.255.255.255");
  EXPECT_EQ(sockets->SendTo(one.socket.Handle(), "x", {"127.255.255.255", 42'002}).error, 0);
  one.socket.SetRemoteHost("127.0.0.1");
  EXPECT_NE(sockets->SendTo(one.socket.Handle(), "x", {"127.255.255.255", 42'002}).error, 0);
}

TEST(SocketValues, HaveTheirBytesInMemoryOrder) {
  struct Case {
    SocketValue value;
    SocketType type;
    std::string bytes;
  };
  using namespace std::string_literals;
  const Case cases[] = {
      {uint8_t{200}, SocketType::kByte, "\xC8"},
      {int16_t{-2}, SocketType::kInteger, "\xFE\xFF"},
      {true, SocketType::kBoolean, "\xFF\xFF"},
      {int32_t{258}, SocketType::kLong, "\x02\x01\0\0"s},
      {1.0F, SocketType::kSingle, "\0\0\x80\x3F"s},
      {1.0, SocketType::kDouble, "\0\0\0\0\0\0\xF0\x3F"s},
      {Currency{10'000}, SocketType::kCurrency, "\x10\x27\0\0\0\0\0\0"s},
      {DateSerial{-1}, SocketType::kDate, "\0\0\0\0\0\0\xF0\xBF"s},
      {"text"s, SocketType::kString, "text"},
      {ByteArray{0, 255}, SocketType::kBytes, "\0\xFF"s},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(BytesOf(each.value), each.bytes);
    EXPECT_EQ(ValueFrom(each.bytes, each.type), each.value);
  }
  EXPECT_EQ(ValueFrom("\x01", SocketType::kLong), SocketValue(int32_t{1}));
  EXPECT_EQ(IntegerToUnsigned(static_cast<int16_t>(UnsignedToInteger(40'000))), 40'000);
  EXPECT_EQ(StartFailureText(10092),
            "The version of Windows Sockets API support requested is not provided by this "
            "particular Windows Sockets implementation.");
}

TEST(Timeouts, ComeEachPeriodUntilTheirWindowGoes) {
  TestHost host;
  TimeOutSupport support(host);
  CTimeout timeout(support);
  int raised = 0;
  timeout.TimeOut = [&] { ++raised; };
  timeout.StartTimer();  // without a value
  host.Advance(1h);
  timeout.SetTimeOutValue(60);
  timeout.StartTimer();
  host.Advance(59s);
  timeout.Reset();
  host.Advance(59s);
  EXPECT_EQ(raised, 0);
  host.Advance(61s);
  EXPECT_EQ(raised, 2);
  timeout.StopTimer();
  host.Advance(1h);
  EXPECT_EQ(raised, 2);
  // Its number is kept, and so it counts no more as running.
  timeout.StartTimer();
  EXPECT_EQ(support.Running(), 0);
  { CTimeout other(support); }
  EXPECT_FALSE(support.HasWindow());
  host.Advance(1h);
  EXPECT_EQ(raised, 2);
  const CTimeout third(support);
  timeout.Reset();
  host.Advance(60s);
  EXPECT_EQ(raised, 3);
}

}  // namespace
}  // namespace quarnel
