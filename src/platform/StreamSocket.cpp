#include "platform/StreamSocket.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QSocketNotifier>
#include <cerrno>
#include <utility>

#include "platform/Descriptor.h"
#include "platform/SocketErrors.h"

namespace platform {

std::optional<Ipv4Address> LookUpHost(const std::string& host) {
  addrinfo wanted = {};
  wanted.ai_family = AF_INET;
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0 || found == nullptr) return std::nullopt;
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> list(found, &::freeaddrinfo);
  return ntohl(reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr.s_addr);
}

/// Each function that calls Tell does so last: the handler may have destroyed this object.
class StreamSocket::Core : public QObject {
 public:
  explicit Core(Handler handler) : OnEvent(std::move(handler)) {}

  int Connect(Ipv4Address address, std::uint16_t port) {
    File = Descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (File.Get() < 0) return socket_errors::FromErrno(errno);
    sockaddr_in peer = {};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = htonl(address);
    const int result = ::connect(File.Get(), reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
    if (result != 0 && errno != EINPROGRESS) return socket_errors::FromErrno(errno);
    Writing = std::make_unique<QSocketNotifier>(File.Get(), QSocketNotifier::Write);
    QObject::connect(Writing.get(), &QSocketNotifier::activated, this, [this] { OnWritable(); });
    return socket_errors::kWouldBlock;
  }

  int Send(const char* bytes, std::size_t size, std::size_t& sent) {
    sent = 0;
    ssize_t count = 0;
    do {
      count = ::send(File.Get(), bytes, size, MSG_NOSIGNAL);
    } while (count < 0 && errno == EINTR);
    const int error = count < 0 ? socket_errors::FromErrno(errno) : socket_errors::kNone;
    if (error == socket_errors::kWouldBlock) Writing->setEnabled(true);
    if (error == socket_errors::kNone) sent = static_cast<std::size_t>(count);
    return error;
  }

  void Tell(SocketEvent event, int error) {
    const Handler call = OnEvent;
    call(event, error);
  }

  Descriptor File;

 private:
  void OnWritable() {
    Writing->setEnabled(false);
    if (Reading) {
      Tell(SocketEvent::Write, socket_errors::kNone);
      return;
    }
    int error = 0;
    socklen_t size = sizeof error;
    if (::getsockopt(File.Get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0) error = errno;
    Reading = std::make_unique<QSocketNotifier>(File.Get(), QSocketNotifier::Read);
    Reading->setEnabled(error == 0);
    QObject::connect(Reading.get(), &QSocketNotifier::activated, this, [this] { OnReadable(); });
    Tell(SocketEvent::Connect, socket_errors::FromErrno(error));
  }

  void OnReadable() {
    char byte = 0;
    const ssize_t count = ::recv(File.Get(), &byte, 1, MSG_PEEK);
    if (count > 0) {
      Tell(SocketEvent::Read, socket_errors::kNone);
      return;
    }
    const int error = count == 0 ? 0 : errno;
    if (error == EAGAIN || error == EINTR) return;
    Reading->setEnabled(false);
    Writing->setEnabled(false);
    Tell(SocketEvent::Close, socket_errors::FromErrno(error));
  }

  const Handler OnEvent;
  // Before the descriptor is closed they must be gone, so they stand behind it.
  std::unique_ptr<QSocketNotifier> Writing;
  std::unique_ptr<QSocketNotifier> Reading;  // null until the connection is made
};

StreamSocket::StreamSocket(Handler handler) : TheCore(std::make_unique<Core>(std::move(handler))) {}

StreamSocket::~StreamSocket() = default;

int StreamSocket::Connect(Ipv4Address address, std::uint16_t port) { return TheCore->Connect(address, port); }

int StreamSocket::Send(const char* bytes, std::size_t size, std::size_t& sent) {
  return TheCore->Send(bytes, size, sent);
}

std::size_t StreamSocket::CountReadable() const {
  int count = 0;
  const bool known = ::ioctl(TheCore->File.Get(), FIONREAD, &count) == 0;
  return known && count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t StreamSocket::Read(char* bytes, std::size_t size) {
  ssize_t count = 0;
  do {
    count = ::recv(TheCore->File.Get(), bytes, size, 0);
  } while (count < 0 && errno == EINTR);
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void StreamSocket::Post(SocketEvent event) {
  Core* core = TheCore.get();
  const auto tell = [core, event] {
    // A dispatcher that has only handled posted events goes on to sleep; HandleEvents is to return instead.
    QAbstractEventDispatcher::instance()->wakeUp();
    core->Tell(event, socket_errors::kNone);
  };
  QMetaObject::invokeMethod(core, tell, Qt::QueuedConnection);
}

}  // namespace platform
