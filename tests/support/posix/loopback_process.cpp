#include "support/posix/loopback_process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "platform/posix/unique_fd.h"

namespace quarnel {
namespace {

sockaddr_in OwnAddress(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int FreePort() {
  const UniqueFd fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address = OwnAddress(0);
  socklen_t length = sizeof address;
  if (bind(fd.Get(), reinterpret_cast<const sockaddr*>(&address), length) != 0) return 0;
  getsockname(fd.Get(), reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.sin_port);
}

bool Takes(int port) {
  const UniqueFd fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_in address = OwnAddress(port);
  return connect(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

LoopbackProcess::LoopbackProcess(const std::function<std::vector<std::string>(int port)>& command,
                                 const std::vector<std::string>& variables) {
  // Somebody else may take the port before the server does.
  for (int attempt = 0; attempt < 3 && port_ == 0; ++attempt) {
    const int port = FreePort();
    Start(command(port), variables);
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < limit && !Ended()) {
      if (Takes(port)) {
        port_ = port;
        return;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    End();
  }
}

LoopbackProcess::~LoopbackProcess() { End(); }

void LoopbackProcess::Start(const std::vector<std::string>& command,
                            const std::vector<std::string>& variables) {
  std::vector<std::string> arguments = command;
  std::vector<std::string> environment = variables;
  environment.emplace_back("PATH=/usr/sbin:/usr/bin:/sbin:/bin");
  const std::vector<char*> argumentPointers = Pointers(arguments);
  const std::vector<char*> environmentPointers = Pointers(environment);
  const int parent = getpid();
  id_ = fork();
  if (id_ != 0) return;
  // With the test, however that ends, and as a group of its own.
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(1);
  const int null = open("/dev/null", O_RDWR);
  for (const int standard : {0, 1, 2}) dup2(null, standard);
  execve(argumentPointers.front(), argumentPointers.data(), environmentPointers.data());
  _exit(127);
}

bool LoopbackProcess::Ended() {
  if (id_ < 0 || waitpid(id_, nullptr, WNOHANG) != id_) return id_ < 0;
  id_ = -1;
  return true;
}

void LoopbackProcess::End() {
  if (id_ < 0) return;
  kill(-id_, SIGKILL);
  kill(id_, SIGKILL);
  waitpid(id_, nullptr, 0);
  id_ = -1;
}

std::filesystem::path MakeTemporaryFolder(std::string pattern) {
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  return pattern;
}

std::string UserName() { return getpwuid(getuid())->pw_name; }
std::string GroupName() { return getgrgid(getgid())->gr_name; }
std::string UserAndGroup() { return std::to_string(getuid()) + ":" + std::to_string(getgid()); }

}  // namespace quarnel
