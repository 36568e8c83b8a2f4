#pragma once

/// The numbers that listeners of the network code get for the errors of sockets: those of the Winsock
/// interface, whatever the system's own are.
namespace platform::socket_errors {

inline constexpr int kNone = 0;
inline constexpr int kInvalidArgument = 10022;
inline constexpr int kTooManyOpen = 10024;
inline constexpr int kWouldBlock = 10035;
inline constexpr int kAddressInUse = 10048;
inline constexpr int kAddressNotAvailable = 10049;
inline constexpr int kNetworkDown = 10050;
inline constexpr int kNetworkUnreachable = 10051;
inline constexpr int kConnectionAborted = 10053;
inline constexpr int kConnectionReset = 10054;
inline constexpr int kNoBuffers = 10055;
inline constexpr int kNotConnected = 10057;
inline constexpr int kTimedOut = 10060;
inline constexpr int kConnectionRefused = 10061;
inline constexpr int kHostDown = 10064;
inline constexpr int kHostUnreachable = 10065;

/// The number for a value of errno; kNetworkDown for one that sockets don't have.
int FromErrno(int number);

}  // namespace platform::socket_errors
