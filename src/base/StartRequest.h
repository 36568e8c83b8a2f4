#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What a process hands over to the one that runs already.
struct StartRequest {
  std::string ActivationToken;     // of the desktop, for the window to come to the front; may be empty
  std::vector<std::string> Paths;  // absolute, as bytes
};

/// The longest request, in bytes: room for tens of thousands of paths.
inline constexpr std::size_t kLongestStartRequest = std::size_t{4} << 20;

/// The bytes of a request: their number as four bytes, the highest first, then the token and the paths, each
/// with a zero byte behind it. Paths that aren't absolute, or for which there is no room, are left out.
std::string EncodeStartRequest(const StartRequest& request);

/// Reads a request from bytes that come in pieces and may be anybody's.
class CStartRequestParser {
 public:
  enum class State {
    Unfinished,
    Whole,
    Bad,  // too long, cut wrongly, a token that no desktop gives, a path that isn't absolute
  };

  /// Once it is Whole or Bad, it stays so unless bytes follow a whole one.
  State Add(std::string_view bytes);

  /// When it is Whole.
  const StartRequest& GetRequest() const { return Request; }

 private:
  State Parse();

  std::string Bytes;
  State Result = State::Unfinished;
  StartRequest Request;
};
