#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace quarnel {

// A server as a process of the user, on the machine's own address, that ends with this object and
// all that it has started.
class LoopbackProcess {
 public:
  // `command` gives program and arguments for a port, which is a free one; `variables` are set for
  // the process. It returns when the server takes connections.
  LoopbackProcess(const std::function<std::vector<std::string>(int port)>& command,
                  const std::vector<std::string>& variables);
  ~LoopbackProcess();
  LoopbackProcess(const LoopbackProcess&) = delete;
  LoopbackProcess& operator=(const LoopbackProcess&) = delete;

  // 0 when it did not start.
  int Port() const { return port_; }

 private:
  void Start(const std::vector<std::string>& command, const std::vector<std::string>& variables);
  bool Ended();
  void End();

  int id_ = -1;
  int port_ = 0;
};

std::filesystem::path MakeTemporaryFolder(std::string pattern);

// Of the user of this process.
std::string UserName();
std::string GroupName();
std::string UserAndGroup();  // their numbers, with a colon between

}  // namespace quarnel
