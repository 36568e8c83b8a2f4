#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// The server's end of a connection, on the server's thread.
class CPeer {
 public:
  explicit CPeer(int socket) : Socket(socket) {
    const int on = 1;
    ::setsockopt(Socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  }
  ~CPeer() { ::close(Socket); }
  CPeer(const CPeer&) = delete;
  CPeer& operator=(const CPeer&) = delete;

  /// A head, and as many bytes behind it as its Content-Length says.
  std::string ReadRequest() {
    std::string request;
    std::size_t size = std::string::npos;
    while (request.size() < size && Read(request)) {
      const std::size_t blank = request.find("\r\n\r\n");
      if (size != std::string::npos || blank == std::string::npos) continue;
      const std::size_t length = request.find("Content-Length: ");
      size = blank + 4 + (length < blank ? std::stoul(request.substr(length + 16)) : 0);
    }
    return request;
  }
  void Write(const std::string& bytes) { ::send(Socket, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  void WriteSlowly(const std::string& bytes) {
    for (const char byte : bytes) Write(std::string(1, byte));
  }
  /// Says nothing until the client goes. Returns what the client has sent.
  std::string StaySilent() {
    std::string received;
    while (Read(received)) {
    }
    return received;
  }
  /// Ends with a reset in place of an orderly close.
  void Break() {
    const linger hard{1, 0};
    ::setsockopt(Socket, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
  }

 private:
  bool Read(std::string& bytes) {
    char buffer[65536];
    const ssize_t count = ::recv(Socket, buffer, sizeof buffer, 0);
    if (count > 0) bytes.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
  }

  const int Socket;
};

/// A server by script: each connection gets the next script, and is closed behind it; the last one repeats.
class CScriptedServer {
 public:
  using Script = std::function<void(CPeer&)>;

  explicit CScriptedServer(std::vector<Script> scripts) : Scripts(std::move(scripts)) {
    Listen(8);
    Thread = std::thread([this] { Serve(); });
  }

  /// One that answers each request with the next of those texts.
  static Script Answer(const std::string& text) {
    return [text](CPeer& peer) {
      peer.ReadRequest();
      peer.Write(text);
      peer.StaySilent();
    };
  }

  /// One whose queue is full: whoever connects waits.
  struct FullQueue {};
  explicit CScriptedServer(FullQueue) {
    Listen(0);
    for (int& filler : Fillers) {
      filler = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
      [[maybe_unused]] const int result = ::connect(filler, AsAddress(), sizeof Address);
    }
  }

  ~CScriptedServer() {
    ::shutdown(Listener, SHUT_RDWR);
    if (Thread.joinable()) Thread.join();
    ::close(Listener);
    for (const int filler : Fillers) ::close(filler);
  }
  CScriptedServer(const CScriptedServer&) = delete;
  CScriptedServer& operator=(const CScriptedServer&) = delete;

  std::string GetHost(const std::string& name = "127.0.0.1") const {
    return name + ":" + std::to_string(ntohs(Address.sin_port));
  }
  int CountConnections() {
    const std::lock_guard lock(Mutex);
    return Connections;
  }

 private:
  sockaddr* AsAddress() { return reinterpret_cast<sockaddr*>(&Address); }

  void Listen(int queue) {
    Address.sin_family = AF_INET;
    Address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof Address;
    if (::bind(Listener, AsAddress(), size) != 0 || ::listen(Listener, queue) != 0 ||
        ::getsockname(Listener, AsAddress(), &size) != 0) {
      throw std::runtime_error("no server");
    }
  }

  void Serve() {
    for (std::size_t next = 0;; ++next) {
      const int socket = ::accept(Listener, nullptr, nullptr);
      if (socket < 0) return;
      {
        const std::lock_guard lock(Mutex);
        ++Connections;
      }
      CPeer peer(socket);
      Scripts[std::min(next, Scripts.size() - 1)](peer);
    }
  }

  const std::vector<Script> Scripts;
  const int Listener = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in Address = {};
  int Fillers[3] = {-1, -1, -1};
  std::mutex Mutex;
  int Connections = 0;
  std::thread Thread;
};
