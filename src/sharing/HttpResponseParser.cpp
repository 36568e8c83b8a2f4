#include "sharing/HttpResponseParser.h"

#include <algorithm>
#include <charconv>

#include "platform/Ascii.h"

namespace {

constexpr std::string_view kBlankLine = "\r\n\r\n";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kProtocol = "HTTP/1.";
constexpr std::size_t kStatusColumn = 9;  // "HTTP/1.1 200 OK"

/// The status of a status line; 0 if there is no number.
int ParseStatus(std::string_view line) {
  line.remove_prefix(std::min(kStatusColumn, line.size()));
  int status = 0;
  std::from_chars(line.data(), line.data() + line.size(), status);
  return std::max(status, 0);
}

}  // namespace

void CHttpResponseParser::Clear() {
  Block.clear();
  Headers.clear();
  Status = 0;
}

CHttpResponseParser::Found CHttpResponseParser::Take(std::string_view& bytes) {
  while (!bytes.empty()) {
    // A line at a time, so that a flood of small blocks costs no more than its bytes.
    const std::string_view piece = bytes.substr(0, kLargestBlock + 1);
    const std::size_t length = std::min(piece.find('\n'), piece.size() - 1) + 1;
    Block.append(piece.substr(0, length));
    bytes.remove_prefix(length);
    if (Block.size() > kLargestBlock) return Found::NoHttp;
    if (!Block.ends_with(kBlankLine)) continue;

    Block.resize(Block.size() - kBlankLine.size());
    if (!Block.starts_with(kProtocol)) return Found::NoHttp;
    Status = ParseStatus(std::string_view(Block).substr(0, Block.find(kLineEnd)));
    if (Status / 100 != 1) {
      ParseHeaders();
      return Found::Headers;
    }
    Clear();
  }
  return Found::Nothing;
}

void CHttpResponseParser::ParseHeaders() {
  std::string_view rest = Block;
  const std::size_t statusEnd = rest.find(kLineEnd);
  rest.remove_prefix(statusEnd == std::string_view::npos ? rest.size() : statusEnd + kLineEnd.size());
  while (!rest.empty() && Headers.size() < kMostHeaders) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (end != std::string_view::npos && line.ends_with('\r')) line.remove_suffix(1);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const std::size_t value = std::min(line.find_first_not_of(' ', colon + 1), line.size());
    Headers.push_back({std::string(line.substr(0, colon)), std::string(line.substr(value))});
  }
}

std::uint32_t CHttpResponseParser::GetContentLength() const {
  std::string text;
  std::size_t index = 0;
  if (!GetHeader("Content-Length", text, index)) return kNoContentLength;
  text.resize(text.find_last_not_of(" \t") + 1);
  std::uint32_t length = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, length);
  return error == std::errc() && stop == end ? length : kNoContentLength;
}

bool CHttpResponseParser::GetHeader(std::string_view name, std::string& value, std::size_t& index) const {
  for (std::size_t at = index; at < Headers.size(); ++at) {
    if (!platform::EqualNoCaseAscii(Headers[at].Name, name)) continue;
    value = Headers[at].Value;
    index = at + 1;
    return true;
  }
  return false;
}
