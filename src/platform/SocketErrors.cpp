#include "platform/SocketErrors.h"

#include <cerrno>

namespace platform::socket_errors {
namespace {

struct Pair {
  int Errno;
  int Number;
};

constexpr Pair kNumbers[] = {
    {0, kNone},
    {EINVAL, kInvalidArgument},
    {EMFILE, kTooManyOpen},
    {ENFILE, kTooManyOpen},
    {EAGAIN, kWouldBlock},
    {EINPROGRESS, kWouldBlock},
    {EADDRINUSE, kAddressInUse},
    {EADDRNOTAVAIL, kAddressNotAvailable},
    {ENETDOWN, kNetworkDown},
    {ENETUNREACH, kNetworkUnreachable},
    {ECONNABORTED, kConnectionAborted},
    {ECONNRESET, kConnectionReset},
    {EPIPE, kConnectionReset},
    {ENOBUFS, kNoBuffers},
    {ENOMEM, kNoBuffers},
    {ENOTCONN, kNotConnected},
    {ETIMEDOUT, kTimedOut},
    {ECONNREFUSED, kConnectionRefused},
    {EHOSTDOWN, kHostDown},
    {EHOSTUNREACH, kHostUnreachable},
};

}  // namespace

int FromErrno(int number) {
  for (const Pair& pair : kNumbers) {
    if (pair.Errno == number) return pair.Number;
  }
  return kNetworkDown;
}

}  // namespace platform::socket_errors
