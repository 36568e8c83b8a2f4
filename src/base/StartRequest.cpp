#include "base/StartRequest.h"

#include <algorithm>

namespace {

constexpr std::size_t kHeader = 4;  // bytes that hold the number of those behind them
constexpr std::size_t kLongestToken = 1024;

bool IsToken(std::string_view text) {
  return text.size() <= kLongestToken &&
         std::ranges::all_of(text, [](char byte) { return byte > ' ' && byte < '\x7f'; });
}

std::size_t ReadLength(std::string_view bytes) {
  std::size_t length = 0;
  for (const char byte : bytes.substr(0, kHeader)) length = length << 8U | static_cast<unsigned char>(byte);
  return length;
}

}  // namespace

std::string EncodeStartRequest(const StartRequest& request) {
  std::string body = (IsToken(request.ActivationToken) ? request.ActivationToken : std::string()) + '\0';
  for (const std::string& path : request.Paths) {
    if (!path.starts_with('/')) continue;
    if (kHeader + body.size() + path.size() + 1 <= kLongestStartRequest) body += path + '\0';
  }
  std::string bytes;
  for (std::size_t shift = 8 * kHeader; shift > 0; shift -= 8) {
    bytes += static_cast<char>(body.size() >> (shift - 8) & 0xFFU);
  }
  return bytes + body;
}

CStartRequestParser::State CStartRequestParser::Add(std::string_view bytes) {
  if (Result == State::Bad || bytes.empty()) return Result;
  if (Bytes.size() + bytes.size() > kLongestStartRequest) return Result = State::Bad;
  Bytes += bytes;
  if (Bytes.size() < kHeader) return Result;
  const std::size_t length = kHeader + ReadLength(Bytes);
  if (length > kLongestStartRequest || Bytes.size() > length) return Result = State::Bad;
  if (Bytes.size() == length) Result = Parse();
  return Result;
}

CStartRequestParser::State CStartRequestParser::Parse() {
  std::string_view rest = std::string_view(Bytes).substr(kHeader);
  std::vector<std::string> fields;
  for (std::size_t end = rest.find('\0'); end != std::string_view::npos; end = rest.find('\0')) {
    fields.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
  if (!rest.empty() || fields.empty() || !IsToken(fields.front())) return State::Bad;
  Request.ActivationToken = fields.front();
  Request.Paths.assign(fields.begin() + 1, fields.end());
  const bool areAbsolute =
      std::ranges::all_of(Request.Paths, [](const std::string& path) { return path.starts_with('/'); });
  return areAbsolute ? State::Whole : State::Bad;
}
