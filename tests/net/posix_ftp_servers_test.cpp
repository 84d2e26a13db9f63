// The client against the servers that people run, as processes of the user on the machine's own
// address.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "ftp_fixture.h"
#include "support/posix/loopback_process.h"

namespace quarnel {
namespace {

enum class Daemon { kVsftpd, kPyftpdlib, kProftpd, kProftpdDos };

std::filesystem::path Unpacked() {
  const auto variable = [](const char* name) {
    const char* const value = std::getenv(name);
    return std::filesystem::path(value == nullptr ? "" : value);
  };
  std::filesystem::path cache = variable("QUARNEL_CACHE");
  if (cache.empty() && !variable("XDG_CACHE_HOME").empty()) {
    cache = variable("XDG_CACHE_HOME") / "quarnel";
  }
  if (cache.empty()) cache = variable("HOME") / ".cache" / "quarnel";
  return cache / "ftp-servers";
}

class FtpServersTest : public FtpTest, public ::testing::WithParamInterface<Daemon> {
 protected:
  FtpServersTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quarnel-ftp-XXXXXX").string();
    folder = MakeTemporaryFolder(pattern);
    std::filesystem::create_directories(folder / "files" / "a folder");
    for (int i = 0; i < 200'000; ++i) body += static_cast<char>(i * 11);
    std::ofstream(folder / "files" / "binary.bin") << body;
    std::ofstream(folder / "files" / "two words.txt") << "one\ntwo\n";
  }
  ~FtpServersTest() override {
    process.reset();
    std::filesystem::remove_all(folder);
  }

  std::string Write(const std::string& name, const std::string& text) {
    const std::filesystem::path path = folder / name;
    std::ofstream(path) << text;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }

  // The command that starts it at a port.
  std::vector<std::string> Command(int port) {
    const std::string number = std::to_string(port);
    const std::string root = folder / "files";
    const std::string user = UserName();
    if (GetParam() == Daemon::kVsftpd) {
      return {Unpacked() / "usr/sbin/vsftpd",
              Write("vsftpd.conf",
                    "listen=YES\nbackground=NO\nlisten_address=127.0.0.1\nlisten_port=" + number +
                        "\nrun_as_launching_user=YES\nseccomp_sandbox=NO\nanonymous_enable=YES\n"
                        "anon_root=" +
                        root + "\nascii_download_enable=YES\nsecure_chroot_dir=" + root +
                        "\nxferlog_enable=NO\nisolate=NO\nisolate_network=NO\nftp_username=" +
                        user + "\nnopriv_user=" + user + "\n")};
    }
    if (GetParam() == Daemon::kPyftpdlib) {
      return {"/usr/bin/python3", Write("server.py",
                                        "from pyftpdlib.authorizers import DummyAuthorizer\n"
                                        "from pyftpdlib.handlers import FTPHandler\n"
                                        "from pyftpdlib.servers import FTPServer\n"
                                        "users = DummyAuthorizer()\n"
                                        "users.add_user('joe', 'secret', '" +
                                            root +
                                            "')\n"
                                            "FTPHandler.authorizer = users\n"
                                            "FTPHandler.auth_failed_timeout = 0\n"
                                            "FTPServer(('127.0.0.1', " +
                                            number + "), FTPHandler).serve_forever()\n")};
    }
    // The password is "secret".
    Write("users", "joe:$1$quarnel$uJxvUJlRjGbN3vmobuyKI.:" + UserAndGroup() + "::" + root +
                       ":/bin/false\n");
    const std::string group = GroupName();
    return {Unpacked() / "usr/sbin/proftpd", "-n", "-c",
            Write("proftpd.conf",
                  "ServerName test\nServerType standalone\nDefaultAddress 127.0.0.1\nPort " +
                      number + "\nSocketBindTight on\nUseReverseDNS off\nUser " + user +
                      "\nGroup " + group + "\nPidFile " + (folder / "pid").string() +
                      "\nScoreboardFile " + (folder / "score").string() +
                      "\nWtmpLog off\nSystemLog none\nTransferLog none\nAuthUserFile " +
                      (folder / "users").string() +
                      "\nAuthOrder mod_auth_file.c\nRequireValidShell off\nRootLogin on\n" +
                      "ModulePath " + (Unpacked() / "usr/lib/proftpd").string() + "\n" +
                      (GetParam() == Daemon::kProftpdDos ? "ListStyle Windows\n" : "") +
                      "AllowRetrieveRestart on\n")};
  }

  void SetUp() override {
    ASSERT_TRUE(std::filesystem::exists(Unpacked() / ".complete")) << "run tools/ftp-servers";
    const auto unpacked = Unpacked();
    process = std::make_unique<LoopbackProcess>(
        [this](int port) { return Command(port); },
        std::vector<std::string>{
            "LD_LIBRARY_PATH=" + (unpacked / "usr/lib/x86_64-linux-gnu").string() + ":" +
                (unpacked / "lib/x86_64-linux-gnu").string(),
            "PYTHONPATH=" + (unpacked / "usr/lib/python3/dist-packages").string()});
    ASSERT_NE(process->Port(), 0) << "the server does not start";
    Prepare(client);
  }

  void Prepare(NotingClient& one) const {
    one.SetFtpServer("127.0.0.1");
    one.SetRemotePort(process->Port());
    one.SetUserName(GetParam() == Daemon::kVsftpd ? "anonymous" : "joe");
    one.SetPassword("secret");
  }

  std::string Download(const std::string& remote, bool overwrite) {
    client.DownloadFile(remote, Path("local"), overwrite);
    std::string noted = Completion(client);
    if (noted == "download0 ") {
      EXPECT_TRUE(Done());
    }
    return noted;
  }

  std::filesystem::path folder;
  std::string body;
  std::unique_ptr<LoopbackProcess> process;
  NotingClient client{support};
};

INSTANTIATE_TEST_SUITE_P(Servers, FtpServersTest,
                         ::testing::Values(Daemon::kVsftpd, Daemon::kPyftpdlib, Daemon::kProftpd,
                                           Daemon::kProftpdDos));

TEST_P(FtpServersTest, GiveFilesAndListings) {
  client.Connect();
  ASSERT_EQ(Completion(client), "connect0 ") << client.refusals;
  for (const bool passive : {true, false}) {
    client.SetPassiveMode(passive);
    client.SetTransferMode(FtpMode::kBinary);
    ASSERT_EQ(Download("binary.bin", true), "download0 ") << client.refusals;
    EXPECT_TRUE(Read(Path("local")) == body);
    WriteWholeFile(files(), Path("local"), body.substr(0, 70'000));
    ASSERT_EQ(Download("binary.bin", false), "download0 ") << client.refusals;
    EXPECT_THAT(client.sent, ::testing::HasSubstr("REST 70000\n"));
    EXPECT_EQ(client.progress, 200'000);
    EXPECT_TRUE(Read(Path("local")) == body);
    client.SetTransferMode(FtpMode::kAscii);
    ASSERT_EQ(Download("two words.txt", true), "download0 ") << client.refusals;
    EXPECT_EQ(Read(Path("local")), "one\r\ntwo\r\n");
    EXPECT_EQ(Download("no such file", true), "download1 ");
    client.EnumFiles();
    ASSERT_EQ(Completion(client), "enum0 ") << client.refusals;
    // This server leaves out the half of the day, by which names stand two columns further left
    // than in any other listing of that form.
    const size_t lost = GetParam() == Daemon::kProftpdDos ? 2 : 0;
    const CFtpFiles& listed = client.CurrentDirectoryFiles();
    EXPECT_TRUE(listed.Item(std::string_view("a folder").substr(lost)).IsDirectory);
    const CFtpFile& file = listed.Item(std::string_view("binary.bin").substr(lost));
    EXPECT_FALSE(file.IsDirectory);
    EXPECT_EQ(file.FileSize, 200'000);
    EXPECT_GT(file.LastWriteTime, CFtpFile().LastWriteTime);
    ASSERT_TRUE(Done());
  }
  client.SetCurrentDirectory("a folder");
  EXPECT_EQ(Completion(client), "change0 ");
  client.GetCurrentDirectory();
  EXPECT_EQ(Completion(client), "current0 ");
  EXPECT_THAT(client.CurrentDirectory(), ::testing::EndsWith("/a folder"));
  client.QuitSession();
  EXPECT_EQ(Completion(client), "quit0 ");
  EXPECT_TRUE(Until([&] { return client.FtpSessionState() == FtpState::kDisconnected; }));
}

TEST_P(FtpServersTest, RefuseAWrongPassword) {
  client.SetUserName("joe");
  client.SetPassword("wrong");
  client.Connect();
  EXPECT_EQ(Completion(client), "connect1 ");
  EXPECT_THAT(client.refusals, ::testing::StartsWith("530"));
  EXPECT_TRUE(Until([&] { return client.FtpSessionState() == FtpState::kDisconnected; }));
  Prepare(client);
  client.Connect();
  EXPECT_EQ(Completion(client), "connect0 ") << client.refusals;
}

}  // namespace
}  // namespace quarnel
