#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "platform/sockets.h"

namespace quarnel {

// A server on the machine's own address that answers with the bytes that it is given.
class LoopbackHttp {
 public:
  explicit LoopbackHttp(Sockets& sockets);
  ~LoopbackHttp();
  LoopbackHttp(const LoopbackHttp&) = delete;
  LoopbackHttp& operator=(const LoopbackHttp&) = delete;

  // The address of a path, which begins with a slash.
  std::string Url(std::string_view path) const;
  static std::string Ok(std::string_view body);
  static std::string RedirectTo(std::string_view url);

  // By the target as it is asked for, without a query; 404 for any other.
  std::map<std::string, std::string> answers;
  // Targets after whose answer the connection stays open.
  std::set<std::string> unfinished;
  std::string heard;  // first lines of requests

 private:
  struct Connection {
    std::string input;
    std::string output;
    bool answered = false;
    bool closes = false;
  };
  void Accept();
  void Happened(SocketHandle socket, SocketEvent event);
  void Answer(Connection& connection);
  void Send(SocketHandle socket, Connection& connection);
  void Close(SocketHandle socket);

  Sockets& sockets_;
  SocketHandle listener_;
  std::map<SocketHandle, Connection> connections_;
};

}  // namespace quarnel
