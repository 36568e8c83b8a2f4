#include "storage/Column.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <new>
#include <utility>

#include "storage/KeyedSlots.h"

namespace {

constexpr std::size_t kRecentTexts = 4096;  // a power of two
constexpr std::uint32_t kNoPlace = 0xffffffff;
constexpr std::size_t kWorthCompacting = std::size_t{1} << 16;  // bytes

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

CIntegerIndex::CIntegerIndex(std::span<const std::int32_t> values, const std::vector<c4_Slot>& slots) {
  std::vector<KeyedSlot> keyed;
  keyed.reserve(slots.size());
  for (const c4_Slot slot : slots) keyed.push_back({MakeSortable(values[slot]), slot});
  SortKeyedSlots(keyed);
  Entries.reserve(keyed.size());
  for (const KeyedSlot& slot : keyed) Entries.push_back({values[slot.Slot], slot.Slot});
}

/// Numbers are given out one after the other, so a row stands near where its value lies between the lowest
/// and the highest: from there the search goes on in steps that double.
CIntegerIndex::Place CIntegerIndex::FindFirst(std::int32_t value) const {
  const auto begin = Entries.begin();
  const std::ptrdiff_t size = std::ssize(Entries);
  if (size == 0 || value <= begin->Value) return begin;
  const std::int64_t lowest = begin->Value;
  const std::int64_t highest = Entries.back().Value;
  if (value > highest) return Entries.end();
  const double share = static_cast<double>(value - lowest) / static_cast<double>(highest - lowest);
  const auto guess = static_cast<std::ptrdiff_t>(share * static_cast<double>(size - 1));
  // Below first no entry is sought, from last on each is.
  std::ptrdiff_t first = guess;
  std::ptrdiff_t last = guess;
  for (std::ptrdiff_t step = 1; first > 0 && (begin + first)->Value >= value; step *= 2) {
    last = first;
    first = std::max(first - step, std::ptrdiff_t{0});
  }
  for (std::ptrdiff_t step = 1; last < size && (begin + last)->Value < value; step *= 2) {
    first = last;
    last = std::min(last + step, size);
  }
  return std::partition_point(begin + first, begin + last,
                              [value](const Entry& entry) { return entry.Value < value; });
}

std::span<const CIntegerIndex::Entry> CIntegerIndex::Find(std::int32_t value) const {
  const auto first = FindFirst(value);
  auto last = first;
  // Mostly a few rows, so the end is sought in steps that double, too.
  for (std::ptrdiff_t step = 1; last != Entries.end() && last->Value == value; step *= 2) {
    last += std::min(step, Entries.end() - last);
  }
  return {first,
          std::partition_point(first, last, [value](const Entry& entry) { return entry.Value == value; })};
}

void CIntegerIndex::Insert(const Entry& entry) {
  Entries.insert(std::lower_bound(Entries.begin(), Entries.end(), entry), entry);
}

void CIntegerIndex::Erase(const Entry& entry) {
  const auto place = std::lower_bound(Entries.begin(), Entries.end(), entry);
  if (place != Entries.end() && *place == entry) Entries.erase(place);
}

CColumn::CColumn(const c4_Property& property, std::size_t size) : Property(property), Type(property.Type()) {
  Resize(size);
}

void CColumn::Reserve(std::size_t size) {
  if (Type == c4_Type::Integer) Integers.reserve(size);
  if (Type == c4_Type::Text) Texts.Reserve(size);
}

void CColumn::Resize(std::size_t size) {
  if (Type == c4_Type::Integer) Integers.resize(size);
  if (Type == c4_Type::Text) Texts.Resize(size);
}

void CColumn::Trim() {
  TrimVector(Integers);
  Texts.Trim();
}

void CColumn::Assign(c4_Slot slot, const c4_Row::Value& value) {
  if (const auto* integer = std::get_if<std::int32_t>(&value)) Integers[slot] = *integer;
  if (const auto* text = std::get_if<std::string>(&value)) Texts.Set(slot, *text);
}

bool CColumn::Holds(c4_Slot slot, const c4_Row::Value& value) const {
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return Integers[slot] == *integer;
  if (const auto* text = std::get_if<std::string>(&value)) return Texts[slot] == *text;
  return false;
}
