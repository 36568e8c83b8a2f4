// The header block of a response: whatever arrives, what is found doesn't depend on how it is cut, no byte of
// the body is lost, and no more is kept than the limits allow.

#include <cstdlib>

#include "sharing/HttpResponseParser.h"

namespace {

using Found = CHttpResponseParser::Found;

void Require(bool holds) {
  if (!holds) std::abort();
}

/// Feeds `bytes` in two pieces; `bytes` receives what is left for the body.
Found TakeCut(CHttpResponseParser& parser, std::string_view& bytes, std::size_t cut) {
  std::string_view first = bytes.substr(0, cut);
  const Found found = parser.Take(first);
  if (found != Found::Nothing) {
    bytes.remove_prefix(cut - first.size());
    return found;
  }
  Require(first.empty());
  bytes.remove_prefix(cut);
  return parser.Take(bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view response(reinterpret_cast<const char*>(data + 1), size - 1);
  std::string_view body = response;
  CHttpResponseParser whole;
  const Found found = whole.Take(body);

  std::string_view cutBody = response;
  CHttpResponseParser cut;
  Require(TakeCut(cut, cutBody, response.size() * data[0] / 256) == found);
  if (found != Found::Headers) return 0;
  Require(cutBody == body && response.ends_with(body));
  Require(cut.GetStatus() == whole.GetStatus() && whole.GetStatus() >= 0 && whole.GetStatus() / 100 != 1);
  Require(cut.GetContentLength() == whole.GetContentLength());

  std::string value;
  std::size_t index = 0;
  std::size_t count = 0;
  while (whole.GetHeader("A", value, index)) ++count;
  Require(count <= CHttpResponseParser::kMostHeaders && index <= CHttpResponseParser::kMostHeaders);
  return 0;
}
