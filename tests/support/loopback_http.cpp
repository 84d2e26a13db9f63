#include "support/loopback_http.h"

namespace quarnel {

LoopbackHttp::LoopbackHttp(Sockets& sockets) : sockets_(sockets) {
  sockets_.Start();
  listener_ = sockets_.Open(SocketKind::kTcp);
  sockets_.Bind(listener_, {"127.0.0.1", 0});
  sockets_.Select(listener_, [this](SocketEvent, int) { Accept(); });
  sockets_.Listen(listener_, 5);
}

LoopbackHttp::~LoopbackHttp() {
  while (!connections_.empty()) Close(connections_.begin()->first);
  sockets_.Close(listener_);
  sockets_.CleanUp();
}

std::string LoopbackHttp::Url(std::string_view path) const {
  std::string url = "http://127.0.0.1:" + std::to_string(sockets_.LocalEnd(listener_).port);
  return url.append(path);
}

std::string LoopbackHttp::Ok(std::string_view body) {
  std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size());
  answer += "\r\nConnection: close\r\n\r\n";
  return answer.append(body);
}

std::string LoopbackHttp::RedirectTo(std::string_view url) {
  std::string answer = "HTTP/1.1 302 Found\r\nContent-Length: 4\r\nConnection: close\r\nLocation: ";
  return answer.append(url).append("\r\n\r\nmore");
}

void LoopbackHttp::Accept() {
  const SocketHandle socket = sockets_.Accept(listener_);
  if (socket == kNoSocket) return;
  connections_[socket] = {};
  sockets_.Select(socket, [this, socket](SocketEvent event, int) { Happened(socket, event); });
}

void LoopbackHttp::Happened(SocketHandle socket, SocketEvent event) {
  const auto found = connections_.find(socket);
  if (found == connections_.end()) return;
  Connection& connection = found->second;
  if (event == SocketEvent::kClose) return Close(socket);
  if (event == SocketEvent::kRead) {
    sockets_.Receive(socket, size_t{1} << 16, connection.input);
    if (!connection.answered && connection.input.find("\r\n\r\n") != std::string::npos) {
      Answer(connection);
    }
  }
  Send(socket, connection);
}

void LoopbackHttp::Answer(Connection& connection) {
  connection.answered = true;
  const std::string line = connection.input.substr(0, connection.input.find("\r\n"));
  heard += line + "\n";
  const size_t from = line.find(' ') + 1;
  const std::string target = line.substr(from, line.find_first_of(" ?", from) - from);
  const auto known = answers.find(target);
  connection.output = known == answers.end()
                          ? "HTTP/1.1 404 Not Found\r\nContent-Length: 5\r\n\r\nno no"
                          : known->second;
  connection.closes = !unfinished.contains(target);
}

void LoopbackHttp::Send(SocketHandle socket, Connection& connection) {
  while (!connection.output.empty()) {
    const SocketCount count = sockets_.Send(socket, connection.output);
    if (count.bytes < 0) return;
    connection.output.erase(0, static_cast<size_t>(count.bytes));
  }
  if (connection.answered && connection.closes) sockets_.ShutDown(socket, false);
}

void LoopbackHttp::Close(SocketHandle socket) {
  connections_.erase(socket);
  sockets_.Close(socket);
}

}  // namespace quarnel
