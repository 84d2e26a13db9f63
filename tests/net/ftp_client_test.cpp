#include "net/c_ftp_client.h"

#include <gmock/gmock.h>

#include <random>

#include "ftp_fixture.h"

namespace quarnel {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

class FtpClientTest : public FtpTest {
 protected:
  FtpClientTest() {
    client.SetFtpServer("127.0.0.1");
    client.SetRemotePort(server.Port());
    client.SetUserName("joe");
    client.SetPassword("secret");
    client.SetPassiveMode(true);
  }
  void LogIn() {
    client.Connect();
    ASSERT_EQ(Completion(client), "connect0 ");
    client.states.clear();
    client.sent.clear();
  }
  ScriptedFtpServer server{socketSupport, host};
  NotingClient client{support};
};

TEST_F(FtpClientTest, LogsInAndOut) {
  EXPECT_FALSE(client.Busy());
  server.Say("", "220-Welcome\r\n220-to this\r\n220 server\r\n");
  client.Connect();
  EXPECT_TRUE(client.Busy());
  ASSERT_EQ(Completion(client), "connect0 ");
  EXPECT_EQ(client.states, "2 3 4 4 5 13 0 ");
  EXPECT_EQ(client.sent, "USER joe\nPASS secret\nPWD \n");
  EXPECT_EQ(server.heard, "USER joe\nPASS secret\nPWD\n");
  EXPECT_EQ(client.CurrentDirectory(), "/");
  EXPECT_EQ(client.FtpServerMessage(), "Welcome\r\nto this");
  EXPECT_EQ(client.LastServerResponse(), "257 \"/\" is it\r\n");
  client.QuitSession();
  EXPECT_EQ(Completion(client), "quit0 ");
  Until([&] { return client.FtpSessionState() == FtpState::kDisconnected; });
  EXPECT_EQ(client.states, "2 3 4 4 5 13 0 19 0 1 ");
  LogIn();
}

// What a reply leads to, operation by operation.
TEST_F(FtpClientTest, ActsOnRepliesByOperation) {
  using Op = FtpOperation;
  struct Case {
    Op operation;
    std::string_view first;  // command and argument
    std::vector<std::pair<std::string_view, std::string_view>> replies;
    std::string_view noted;
    std::string_view heard;
  };
  const Case cases[] = {
      {Op::kCreateDirectory, "MKD x", {{"MKD", "257 made\r\n"}}, "create0 ", "MKD x\n"},
      {Op::kCreateDirectory, "MKD x", {{"MKD", "250 made\r\n"}}, "create1 ", "MKD x\n"},
      {Op::kRemoveDirectory, "RMD x", {{"RMD", "250 gone\r\n"}}, "remove0 ", "RMD x\n"},
      {Op::kRemoveDirectory, "RMD x", {{"RMD", "550 no\r\n"}}, "remove1 ", "RMD x\n"},
      {Op::kRename,
       "RNFR x",
       {{"RNFR", "350 to?\r\n"}, {"RNTO", "250 is\r\n"}},
       "rename0 ",
       "RNFR x\nRNTO new\n"},
      {Op::kRename,
       "RNFR x",
       {{"RNFR", "350 to?\r\n"}, {"RNTO", "553 no\r\n"}},
       "rename1 ",
       "RNFR x\nRNTO new\n"},
      {Op::kRename, "RNFR x", {{"RNFR", "450 no\r\n"}}, "rename1 ", "RNFR x\n"},
      {Op::kDeleteFile, "DELE x", {{"DELE", "250 gone\r\n"}}, "delete0 ", "DELE x\n"},
      {Op::kDeleteFile, "DELE x", {{"DELE", "123 hm\r\n"}}, "delete1 ", "DELE x\n"},
      {Op::kUploadFile,
       "TYPE I",
       {{"STOR", "150 go\r\n\v226 done\r\n"}},
       "upload0 ",
       "TYPE I\nREST 3\nPASV\nSTOR remote\n"},
      {Op::kUploadFile,
       "TYPE I",
       {{"STOR", "552 full\r\n"}},
       "upload1 ",
       "TYPE I\nREST 3\nPASV\nSTOR remote\n"},
      {Op::kUploadFile, "TYPE I", {{"REST", "502 no\r\n"}}, "upload1 ", "TYPE I\nREST 3\n"},
      {Op::kSetCurrentDirectory, "CWD x", {{"CWD", "550 no\r\n"}}, "change1 ", "CWD x\n"},
      {Op::kGetCurrentDirectory, "PWD", {{"PWD", "257 no quotes\r\n"}}, "current1 ", "PWD\n"},
      {Op::kGetCurrentDirectory, "PWD", {{"PWD", "257 \"\\a\\b\"\r\n"}}, "current0 ", "PWD\n"},
  };
  LogIn();
  for (const Case& each : cases) {
    for (const auto& [command, reply] : each.replies) server.Say(command, reply);
    server.heard.clear();
    client.SetNames("remote", Make("local", "12345"), "new");
    client.SetUploadOffset(each.operation == Op::kUploadFile ? 3 : 0);
    const size_t blank = std::min(each.first.find(' '), each.first.size());
    client.Start(each.operation, each.first.substr(0, blank),
                 each.first.substr(std::min(blank + 1, each.first.size())));
    EXPECT_EQ(Completion(client), each.noted) << each.first;
    EXPECT_EQ(server.heard, each.heard);
    if (each.operation == Op::kUploadFile) server.Say("REST", "350 go\r\n");
  }
  EXPECT_EQ(client.CurrentDirectory(), "/a/b");
  EXPECT_THAT(client.status, HasSubstr("Please try  after Some time ."));
}

TEST_F(FtpClientTest, RefusedLogInsCloseTheConnection) {
  for (const auto& [command, reply] : {std::pair("", "120 later\r\n"),
                                       {"USER", "530 no\r\n"},
                                       {"PASS", "530 no\r\n"},
                                       {"PWD", "550 no\r\n"},
                                       {"PWD", "257 no quotes here\r\n"}}) {
    ScriptedFtpServer refusing(socketSupport, host);
    refusing.Say(command, reply);
    client.SetRemotePort(refusing.Port());
    client.LastFtpError() = {};
    client.Connect();
    EXPECT_EQ(Completion(client), "connect1 ") << command << reply;
    EXPECT_EQ(client.LastFtpError().Number, std::string_view(reply).starts_with("257") ? 16001 : 0);
  }
}

TEST_F(FtpClientTest, ReadsRepliesInPiecesAndOfManyLines) {
  server.Say("", "2\v20 Welcome\r\n");
  server.Say("USER", "331\v Password?\r\n");
  server.Say("PASS", "230-Much\r\n\v230-to\v say\r\n 230 at its\r\n\v23\v0 end\r\n");
  server.Say("PWD", "25\v7 \"/here\" it is\r\n");
  server.Say("PASV", "227 Passive (\v{data}\v)\r\n");
  server.Say("RETR", "1\v50 Comes\r\n");
  server.Say("QUIT", "221-Bye\r\n\v221 now\r\n\f");
  server.data = "body";
  client.Connect();
  ASSERT_EQ(Completion(client), "connect0 ");
  EXPECT_EQ(client.FtpServerMessage(), "Much\r\nto say");
  EXPECT_EQ(client.CurrentDirectory(), "/here");
  client.DownloadFile("remote", Path("local"), true);
  ASSERT_EQ(Completion(client), "download0 ");
  EXPECT_EQ(Read(Path("local")), "body");
  ASSERT_TRUE(Done());
  client.QuitSession();
  EXPECT_EQ(Completion(client), "quit0 ");
}

TEST_F(FtpClientTest, DownloadsGoesOnAndOverwrites) {
  LogIn();
  for (int i = 0; i < 300'000; ++i) server.data += static_cast<char>(i * 7);
  const std::string local = Path("local");
  for (const bool passive : {true, false}) {
    client.SetPassiveMode(passive);
    WriteWholeFile(files(), local, server.data.substr(0, 100'000));
    server.heard.clear();
    client.DownloadFile("remote", local, false);
    client.EnumFiles();  // one thing at a time
    ASSERT_EQ(Completion(client), "download0 ");
    EXPECT_EQ(client.progress, 300'000);
    EXPECT_TRUE(Read(local) == server.data);
    EXPECT_THAT(server.heard, ::testing::StartsWith(passive ? "TYPE I\nPASV\n" : "TYPE I\nPORT "));
    EXPECT_THAT(server.heard, ::testing::EndsWith("REST 100000\nRETR remote\n"));
    ASSERT_TRUE(Done());
    WriteWholeFile(files(), local, std::string(400'000, 'x'));
    client.DownloadFile("remote", local, true);
    ASSERT_EQ(Completion(client), "download0 ");
    EXPECT_TRUE(Read(local) == server.data);
    ASSERT_TRUE(Done());
  }
  // A server that does not go on leaves the file as it is, and the next transfer is none the worse.
  WriteWholeFile(files(), local, "first");
  server.Say("REST", "502 no\r\n");
  client.DownloadFile("remote", local, false);
  EXPECT_EQ(Completion(client), "download1 ");
  EXPECT_EQ(Read(local), "first");
  client.DownloadFile("remote", local, true);
  EXPECT_EQ(Completion(client), "download0 ");
  EXPECT_TRUE(Read(local) == server.data);
}

TEST_F(FtpClientTest, TransfersFailByTheReply) {
  struct Case {
    std::string_view command;
    std::string_view reply;
    bool passive;
  };
  const Case cases[] = {
      {"TYPE", "504 no\r\n", true},       {"PASV", "425 no\r\n", true},
      {"PORT", "500 no\r\n", false},      {"RETR", "550 none\r\n", true},
      {"RETR", "550 none\r\n", false},    {"LIST", "550 none\r\n", true},
      {"RETR", "350 strange\r\n", true},  {"PASV", "999 strange\r\n", true},
      {"LIST", "350 strange\r\n", false},
  };
  server.data = "x";
  for (const Case& each : cases) {
    ScriptedFtpServer refusing(socketSupport, host);
    client.SetRemotePort(refusing.Port());
    client.SetPassiveMode(each.passive);
    LogIn();
    refusing.Say(each.command, each.reply);
    const bool lists = each.command == "LIST";
    if (lists) {
      client.EnumFiles();
    } else {
      client.DownloadFile("remote", Path("local"), true);
    }
    EXPECT_EQ(Completion(client), lists ? "enum1 " : "download1 ") << each.command << each.reply;
    EXPECT_FALSE(client.Busy());
    EXPECT_FALSE(client.DataTransferInProgress());
  }
  // What cannot be written is no success either.
  client.SetRemotePort(server.Port());
  LogIn();
  client.DownloadFile("remote", Path("no folder\\local"), true);
  EXPECT_EQ(Completion(client), "download1 ");
  EXPECT_THAT(Log(), HasSubstr("OpenLocalFile"));
  client.DownloadFile("remote", Path("local"), true);
  EXPECT_EQ(Completion(client), "download0 ");
}

TEST_F(FtpClientTest, ListsBothWays) {
  LogIn();
  for (const bool passive : {true, false}) {
    client.SetPassiveMode(passive);
    server.data = "drwxr-xr-x   2 root     root         4096 Dec  3  2004 sub\r\n";
    client.EnumFiles();
    EXPECT_TRUE(client.DataTransferInProgress());
    ASSERT_EQ(Completion(client), "enum0 ");
    ASSERT_EQ(client.CurrentDirectoryFiles().Count(), 1U);
    EXPECT_EQ(client.CurrentDirectoryFiles().Item("sub").FileSize, 4096);
    EXPECT_EQ(client.CurrentDirectoryListing(), server.data);
    server.data.clear();
    ASSERT_TRUE(Done());
    client.EnumFiles();
    ASSERT_EQ(Completion(client), "enum0 ");
    EXPECT_EQ(client.CurrentDirectoryFiles().Count(), 0U);
    ASSERT_TRUE(Done());
  }
}

TEST_F(FtpClientTest, TellsTimeOutsUntilItIsCancelled) {
  using Start = void (*)(CFtpClient&, const std::string& local);
  const std::tuple<const char*, const char*, Start> cases[] = {
      {"PWD", "current", [](CFtpClient& one, const std::string&) { one.GetCurrentDirectory(); }},
      {"TYPE", "download",
       [](CFtpClient& one, const std::string& local) { one.DownloadFile("r", local, true); }},
      {"TYPE", "enum", [](CFtpClient& one, const std::string&) { one.EnumFiles(); }},
      {"QUIT", "quit", [](CFtpClient& one, const std::string&) { one.QuitSession(); }},
  };
  LogIn();
  for (const auto& [command, noted, start] : cases) {
    server.Say(command, "");
    start(client, Path("local"));
    for (int period = 0; period < 2; ++period) {
      host.virtualClock().Pass(59s);
      host.DoEvents();
      EXPECT_EQ(client.Taken(), "");
      host.virtualClock().Pass(1s);
      host.DoEvents();
      EXPECT_EQ(client.Taken(), noted + std::string("2 "));
    }
    client.CancelAsyncMethod();
    // Nothing is told of the end of a session that ends anyhow.
    EXPECT_EQ(client.Taken(), noted == std::string("quit") ? "" : noted + std::string("3 "));
    EXPECT_FALSE(client.Busy());
  }
}

// The operation ends without an event of its own.
TEST_F(FtpClientTest, AClosedConnectionShowsInTheState) {
  for (const std::string command : {"TYPE", "PASV", "RETR"}) {
    ScriptedFtpServer closing(socketSupport, host);
    client.SetRemotePort(closing.Port());
    LogIn();
    closing.Say(command, "\f");
    client.DownloadFile("remote", Path("local"), true);
    ASSERT_TRUE(Until([&] { return client.FtpSessionState() == FtpState::kDisconnected; }));
    EXPECT_EQ(client.Taken(), "") << command;
  }
  server.Say("TYPE", "421 Too long\r\n");
  client.SetRemotePort(server.Port());
  LogIn();
  client.EnumFiles();
  EXPECT_EQ(Completion(client), "enum1 ");
}

// A reply without end is not waited for, nor does the room for it grow.
TEST_F(FtpClientTest, EndlessRepliesEndTheConnection) {
  std::string endless;
  while (endless.size() < 70'000) endless += "220-and more\r\n";
  server.Say("", endless);
  client.Connect();
  EXPECT_EQ(Completion(client), "connect1 ");
}

TEST_F(FtpClientTest, KeepsPropertiesInTheirRanges) {
  for (const int32_t port : {0, 65'536, -1}) client.SetRemotePort(port);
  EXPECT_EQ(client.RemotePort(), server.Port());
  client.SetSendBufferLenght(8192);
  client.SetSendBufferLenght(8193);
  client.SetSendBufferLenght(511);
  EXPECT_EQ(client.SendBufferLenght(), 8192);
  LogIn();
  client.SetCurrentDirectory("");
  client.DownloadFile("", "x", false);
  EXPECT_EQ(client.Taken(), "");
  for (const auto label :
       {"RemotePort  in cftpclient Class", "SendBufferLenght in cftpclient Class",
        "SetCurrentDirectory in cftpCleint Class", "DownloadFile  in cftpClient class"}) {
    EXPECT_THAT(Log(), HasSubstr(label));
  }
  EXPECT_THAT(Log(), ::testing::Not(HasSubstr("secret")));
}

TEST_F(FtpClientTest, StandsAnyReply) {
  const std::string good[] = {"220 hi\r\n", "331-a\r\n331 b\r\n", "230 in\r\n", "257 \"/\" x\r\n",
                              "200 ok\r\n", "227 p ({data})\r\n", "150 c\r\n",  "226 d\r\n"};
  const std::string commands[] = {"", "USER", "PASS", "PWD", "TYPE", "PASV", "RETR", "QUIT"};
  const std::string marks = "\v\f\a-0 9(),\"\r\n";
  std::mt19937 random(11);
  for (int turn = 0; turn < 60; ++turn) {
    ScriptedFtpServer hostile(socketSupport, host);
    NotingClient victim(support);
    victim.SetFtpServer("127.0.0.1");
    victim.SetRemotePort(hostile.Port());
    victim.SetPassiveMode(turn % 3 != 0);
    hostile.data = "body";
    const size_t at = random() % std::size(commands);
    std::string reply = good[random() % 2 == 0 ? at : random() % std::size(good)];
    for (int change = turn % 4; change > 0; --change) {
      reply[random() % reply.size()] =
          random() % 3 == 0 ? static_cast<char>(random()) : marks[random() % marks.size()];
    }
    hostile.Say(commands[at], reply.substr(0, random() % reply.size() + 1));
    // It may wait for the rest of a reply, which only the user ends.
    HostTimer user(host, 15ms);
    int ticks = 0;
    user.Tick = [&] {
      ++ticks;
      victim.CancelAsyncMethod();
    };
    user.Start();
    const auto go = [&] {
      ticks = 0;
      Until([&] { return ticks > 1 || !victim.Taken().empty(); });
    };
    victim.Connect();
    go();
    victim.DownloadFile("remote", Path("local"), turn % 2 == 0);
    go();
  }
  server.data = "whole";
  LogIn();
  client.DownloadFile("remote", Path("local"), true);
  EXPECT_EQ(Completion(client), "download0 ");
  EXPECT_EQ(Read(Path("local")), "whole");
}

TEST(FtpProtocol, ReadsRepliesAndAddresses) {
  EXPECT_EQ(ReadFtpReply("220 ").code, 220);
  EXPECT_EQ(ReadFtpReply("220").code, 0);
  EXPECT_EQ(ReadFtpReply("2 0 x\r\nab226 x").code, 0);
  EXPECT_EQ(ReadFtpReply("150 a\r\n226 b\r\n").code, 226);
  EXPECT_EQ(ReadFtpReply("220-a\r\n b\r\n220-c").message, "a\r\nc\r\n");
  EXPECT_EQ(PortArgument("10.0.0.1", 40'001), "10,0,0,1,156,65");
  EXPECT_EQ(PasvEndOf("227 x (127,0,0,1,156,65).\r\n").host, "127.0.0.1");
  EXPECT_EQ(PasvEndOf("227 x (127,0,0,1,156,65)\r\n").port, 40'001);
  for (const auto reply : {"227 x", "227 )(", "227 (1,2,3,4,5)", "227 (1,2,3,4,x,5)",
                           "227 (1,2,3,4,256,1)", "227 (1,2,3,4,-1,1)"}) {
    EXPECT_TRUE(ErrorOf([&] { PasvEndOf(reply); })) << reply;
  }
  EXPECT_EQ(FtpReplyText(425), "Can 't open data connection.");
  EXPECT_EQ(FtpReplyText(226), "");
  EXPECT_EQ(StateOfCommand("TYPE", FtpOperation::kUploadFile), FtpState::kStoring);
  EXPECT_EQ(StateOfCommand("RNTO", FtpOperation::kRename), FtpState::kIdle);
}

// Each listens at the next number, so that a port in use costs one try.
TEST_F(FtpTest, PortsFollowEachOther) {
  const int32_t first = support.GetFreePort();
  EXPECT_TRUE(first >= 20'000 && first <= 40'001) << first;
  EXPECT_EQ(support.GetFreePort(), first + 1);
}

}  // namespace
}  // namespace quarnel
