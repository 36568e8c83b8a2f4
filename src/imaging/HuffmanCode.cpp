#include "imaging/HuffmanCode.h"

namespace {

constexpr std::size_t kMostSymbols = 256;

}  // namespace

std::optional<CHuffmanCode> CHuffmanCode::Make(std::span<const std::uint8_t, kMostBits> counts,
                                               std::span<const std::uint8_t> symbols) {
  CHuffmanCode made;
  std::uint32_t code = 0;
  for (unsigned bits = 1; bits <= kMostBits; ++bits, code <<= 1) {
    const std::uint8_t count = counts[bits - 1];
    made.First[bits] = code;
    made.Places[bits] = made.Entries.size();
    code += count;
    const std::size_t entries = made.Entries.size() + count;
    if (code >= 1U << bits || entries > kMostSymbols || entries > symbols.size()) return std::nullopt;
    for (unsigned k = 0; k < count; ++k) {
      made.Entries.push_back({static_cast<std::uint8_t>(bits), symbols[made.Entries.size()]});
    }
    made.Ends[bits] = code << (kMostBits - bits);
  }
  return made;
}

CHuffmanCode::Entry CHuffmanCode::Find(std::uint64_t window) const {
  const auto bits = static_cast<unsigned>(window >> (64 - kMostBits));
  for (unsigned length = 1; length <= kMostBits; ++length) {
    if (bits >= Ends[length]) continue;
    return Entries[Places[length] + ((bits >> (kMostBits - length)) - First[length])];
  }
  return {};
}

std::vector<CHuffmanCode::Entry> CHuffmanCode::MakeIndex(unsigned bits) const {
  std::vector<Entry> index;
  index.reserve(std::size_t{1} << bits);
  for (const Entry& entry : Entries) {
    if (entry.Bits > bits) break;
    index.insert(index.end(), std::size_t{1} << (bits - entry.Bits), entry);
  }
  index.resize(std::size_t{1} << bits);
  return index;
}
