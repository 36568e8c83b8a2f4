// What another process sends: whatever arrives is read alike in one piece and in two, and what is whole is
// what it was made of.

#include <cstdint>
#include <cstdlib>

#include "base/StartRequest.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using State = CStartRequestParser::State;
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::size_t cut = bytes.size() * data[0] / 256;
  CStartRequestParser whole, pieces;
  const State state = whole.Add(bytes);
  pieces.Add(bytes.substr(0, cut));
  if (pieces.Add(bytes.substr(cut)) != state) std::abort();
  if (state == State::Whole && EncodeStartRequest(whole.GetRequest()) != bytes) std::abort();
  return 0;
}
