#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// "Content-Length" of a response that has none, or none that can be read.
inline constexpr std::uint32_t kNoContentLength = 0xFFFFFFFF;

/// Gathers the header block of an HTTP response from the pieces in which it arrives. The bytes come from the
/// network and may be anything; what is found doesn't depend on how they are cut. Interim responses (100 to
/// 199) are passed over.
class CHttpResponseParser {
 public:
  enum class Found { Nothing, Headers, NoHttp };

  /// The largest header block, its blank line included. A larger one is no HTTP.
  static constexpr std::size_t kLargestBlock = std::size_t{64} << 10;
  static constexpr std::size_t kMostHeaders = 64;

  void Clear();

  /// Takes bytes up to the end of the final header block from the front of `bytes`; what is left then belongs
  /// to the body. Not to be called again after Headers or NoHttp, until Clear.
  Found Take(std::string_view& bytes);

  int GetStatus() const { return Status; }

  /// kNoContentLength for a length that isn't a decimal number below it.
  std::uint32_t GetContentLength() const;

  /// Looks for a header from `index` on, whatever the case of its name, and leaves `index` behind the one
  /// found. Headers behind the first 64 aren't kept.
  bool GetHeader(std::string_view name, std::string& value, std::size_t& index) const;

 private:
  struct Header {
    std::string Name;
    std::string Value;
  };

  void ParseHeaders();

  std::string Block;  // up to the blank line, which is cut off once it is there
  std::vector<Header> Headers;
  int Status = 0;
};
