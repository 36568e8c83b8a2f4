#include "storage/TextOrder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/Ascii.h"

namespace {

/// How many bytes both begin with, in steps of 8: most texts that are compared share a long folder name.
std::size_t SkipEqualWords(std::string_view left, std::string_view right, std::size_t common) {
  std::size_t at = 0;
  while (at + 8 <= common) {
    std::uint64_t leftWord = 0;
    std::uint64_t rightWord = 0;
    std::memcpy(&leftWord, left.data() + at, 8);
    std::memcpy(&rightWord, right.data() + at, 8);
    if (leftWord != rightWord) break;
    at += 8;
  }
  return at;
}

}  // namespace

int CompareTexts(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t at = SkipEqualWords(left, right, common); at < common; ++at) {
    const int difference = platform::FoldByte(left[at]) - platform::FoldByte(right[at]);
    if (difference != 0) return difference;
  }
  if (left.size() == right.size()) return 0;
  return left.size() < right.size() ? -1 : 1;
}

bool TextsAreEqual(std::string_view left, std::string_view right) {
  return left.size() == right.size() && CompareTexts(left, right) == 0;
}
