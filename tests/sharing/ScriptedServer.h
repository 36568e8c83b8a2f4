#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <mutex>
#include <thread>

/// What a server does when it has read a request.
struct Reply {
  enum class Ending { Wait, Close, Reset };  // Wait: until the client goes

  std::string Bytes;
  Ending Then = Ending::Wait;
};

/// A server by script: each connection gets the next reply, the last one again and again. Without replies it
/// lets whoever connects wait.
class CScriptedServer {
 public:
  explicit CScriptedServer(std::vector<Reply> replies) : Replies(std::move(replies)) {
    socklen_t size = sizeof Address;
    Address.sin_family = AF_INET;
    Address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_TRUE(::bind(Listener, AsAddress(), size) == 0 &&
                ::listen(Listener, Replies.empty() ? 0 : 8) == 0 &&
                ::getsockname(Listener, AsAddress(), &size) == 0);
    if (!Replies.empty()) Thread = std::thread([this] { Serve(); });
    for (const int filler : Fillers) {
      if (Replies.empty()) static_cast<void>(::connect(filler, AsAddress(), size));
    }
  }
  ~CScriptedServer() {
    ::shutdown(Listener, SHUT_RDWR);
    if (Thread.joinable()) Thread.join();
    for (const int number : {Listener, Fillers[0], Fillers[1]}) ::close(number);
  }
  CScriptedServer(const CScriptedServer&) = delete;
  CScriptedServer& operator=(const CScriptedServer&) = delete;

  std::string GetHost(const std::string& name = "127.0.0.1") const {
    return name + ":" + std::to_string(ntohs(Address.sin_port));
  }
  std::vector<std::string> GetRequests() {
    const std::lock_guard lock(Mutex);
    return Requests;
  }

 private:
  sockaddr* AsAddress() { return reinterpret_cast<sockaddr*>(&Address); }

  void Serve() {
    for (std::size_t next = 0;; ++next) {
      const int peer = ::accept(Listener, nullptr, nullptr);
      if (peer < 0) return;
      const Reply& reply = Replies[std::min(next, Replies.size() - 1)];
      std::string request;
      while (Read(peer, request) && request.size() < GetSize(request)) continue;
      {
        const std::lock_guard lock(Mutex);
        Requests.push_back(request);
      }
      ::send(peer, reply.Bytes.data(), reply.Bytes.size(), MSG_NOSIGNAL);
      while (reply.Then == Reply::Ending::Wait && Read(peer, request)) continue;
      const linger hard{1, 0};
      if (reply.Then == Reply::Ending::Reset) ::setsockopt(peer, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
      ::close(peer);
    }
  }

  /// Of the whole request; without the end of its head the largest number.
  static std::size_t GetSize(const std::string& request) {
    const std::size_t blank = request.find("\r\n\r\n");
    const std::size_t length = request.find("Content-Length: ");
    if (blank == std::string::npos) return blank;
    return blank + 4 + (length < blank ? std::strtoul(&request[length + 16], nullptr, 10) : 0);
  }

  static bool Read(int peer, std::string& bytes) {
    char buffer[65536];
    const ssize_t count = ::recv(peer, buffer, sizeof buffer, 0);
    if (count > 0) bytes.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
  }

  const std::vector<Reply> Replies;
  const int Listener = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in Address = {};
  const int Fillers[2] = {::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0),
                          ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0)};
  std::mutex Mutex;
  std::vector<std::string> Requests;
  std::thread Thread;
};

/// The event loop that the network code needs, without a window.
class CEventLoopFixture : public testing::Test {
 private:
  char Name[5] = "test";
  char* Arguments[2] = {Name, nullptr};
  int ArgumentCount = 1;
  const QCoreApplication Application{ArgumentCount, Arguments};
};
