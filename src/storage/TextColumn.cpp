#include "storage/TextColumn.h"

#include <functional>
#include <limits>
#include <new>
#include <utility>

namespace {

constexpr std::size_t kRecentTexts = 4096;  // a power of two
constexpr std::uint32_t kNoPlace = 0xffffffff;
constexpr std::size_t kWorthCompacting = std::size_t{1} << 16;  // bytes

template <typename T>
void TrimVector(std::vector<T>& values) {
  if (values.capacity() > values.size() + values.size() / 16) values.shrink_to_fit();
}

}  // namespace

void CTextColumn::Append(std::string_view text) { Places.push_back(Occupy(text)); }

void CTextColumn::Set(std::size_t slot, std::string_view text) {
  const std::uint32_t old = Places[slot];
  Places[slot] = Occupy(text);
  Release(old);
}

void CTextColumn::Resize(std::size_t size) {
  while (Places.size() > size) {
    const std::uint32_t last = Places.back();
    Places.pop_back();
    Release(last);
  }
  while (Places.size() < size) Append({});
}

void CTextColumn::Reserve(std::size_t size) { Places.reserve(size); }

void CTextColumn::Trim() {
  TrimVector(Places);
  TrimVector(Texts);
  TrimVector(Bytes);
}

std::uint32_t CTextColumn::Occupy(std::string_view text) {
  if (Recent.empty()) Recent.assign(kRecentTexts, kNoPlace);
  std::uint32_t& recent = Recent[std::hash<std::string_view>()(text) & (kRecentTexts - 1)];
  if (recent == kNoPlace || Texts[recent].Uses == 0 || GetTextAt(recent) != text) recent = MakePlace(text);
  ++Texts[recent].Uses;
  return recent;
}

std::uint32_t CTextColumn::MakePlace(std::string_view text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max() - Bytes.size()) throw std::bad_alloc();
  const Text made{static_cast<std::uint32_t>(Bytes.size()), static_cast<std::uint32_t>(text.size()), 0};
  Bytes.insert(Bytes.end(), text.begin(), text.end());
  if (Free.empty()) {
    Texts.push_back(made);
    return static_cast<std::uint32_t>(Texts.size() - 1);
  }
  const std::uint32_t place = Free.back();
  Free.pop_back();
  Texts[place] = made;
  return place;
}

void CTextColumn::Release(std::uint32_t place) {
  if (--Texts[place].Uses > 0) return;
  Free.push_back(place);
  UnusedBytes += Texts[place].Length;
  if (UnusedBytes > kWorthCompacting && UnusedBytes > Bytes.size() / 2) Compact();
}

void CTextColumn::Compact() {
  std::vector<char> bytes;
  bytes.reserve(Bytes.size() - UnusedBytes);
  for (Text& text : Texts) {
    const auto begin = Bytes.begin() + text.Offset;
    const auto end = begin + (text.Uses > 0 ? text.Length : 0);
    text.Offset = static_cast<std::uint32_t>(bytes.size());
    text.Length = static_cast<std::uint32_t>(end - begin);
    bytes.insert(bytes.end(), begin, end);
  }
  Bytes = std::move(bytes);
  UnusedBytes = 0;
}
