#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace platform {

/// In the byte order of the machine: 127.0.0.1 is 0x7F000001.
using Ipv4Address = std::uint32_t;

/// The first IPv4 address of a host, which is a name or an address with dots. Blocks for as long as the
/// system takes to answer. Any thread.
std::optional<Ipv4Address> LookUpHost(const std::string& host);

enum class SocketEvent { Connect, Read, Write, Close };

/// A connection over TCP that never blocks. Its events come one by one, in order, through the event loop of
/// the thread that made it; that thread alone uses it. The descriptor is closed at exec, and a peer that is
/// gone never raises a signal. Errors are numbers of socket_errors.
///
/// The events: Connect, with an error or none, once; Read while bytes wait; Write when a Send that would have
/// blocked may go on; Close once, when the peer has closed or the connection broke and every byte has been
/// read.
class StreamSocket {
 public:
  /// May be called with a socket that is destroyed during the call.
  using Handler = std::function<void(SocketEvent event, int error)>;

  explicit StreamSocket(Handler handler);
  ~StreamSocket();
  StreamSocket(const StreamSocket&) = delete;
  StreamSocket& operator=(const StreamSocket&) = delete;

  /// Begins to connect: kWouldBlock, and the event Connect tells the rest. Any other number is a failure.
  int Connect(Ipv4Address address, std::uint16_t port);

  /// Hands over as many bytes as the system takes; `sent` receives their number.
  int Send(const char* bytes, std::size_t size, std::size_t& sent);

  /// The number of bytes that can be read at once.
  std::size_t CountReadable() const;

  /// Reads up to `size` bytes; 0 if there are none.
  std::size_t Read(char* bytes, std::size_t size);

  /// Makes an event come through the event loop, unless the socket is destroyed before.
  void Post(SocketEvent event);

 private:
  class Core;
  std::unique_ptr<Core> TheCore;
};

}  // namespace platform
