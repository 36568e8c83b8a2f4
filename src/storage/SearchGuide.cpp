#include "storage/SearchGuide.h"

#include <algorithm>

#include "storage/KeyedSlots.h"
#include "storage/Table.h"
#include "storage/TextOrder.h"

namespace {

constexpr std::size_t kKeyBytes = 8;

std::string FindCommonPrefix(std::string_view left, std::string_view right) {
  std::string prefix;
  for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
    if (FoldByte(left[i]) != FoldByte(right[i])) break;
    prefix += static_cast<char>(FoldByte(left[i]));
  }
  return prefix;
}

}  // namespace

CSearchGuide::CSearchGuide(const c4_Table& table, const SortKey& key, std::span<const c4_Slot> slots)
    : Size(slots.size()), Flip(key.Descending ? ~std::uint64_t{0} : 0) {
  const auto number = table.FindColumn(key.Property);
  if (!number || slots.empty()) return;
  const CColumn& column = table.GetColumn(*number);
  IsText = column.Type == c4_Type::Text;
  // What the first and the last of sorted texts have in common all of them have.
  if (IsText) Prefix = FindCommonPrefix(column.Texts[slots.front()], column.Texts[slots.back()]);
  if (column.Type == c4_Type::Bytes) return;
  for (std::size_t position = 0; position < slots.size(); position += kDistance) {
    const c4_Slot slot = slots[position];
    const std::uint64_t mark = IsText ? MakeTextKey(column.Texts[slot]) : MakeSortable(column.Integers[slot]);
    Marks.push_back(mark ^ Flip);
  }
}

/// The bytes after the common beginning. Different texts may have one key, but never in the wrong order.
std::uint64_t CSearchGuide::MakeTextKey(std::string_view text) const {
  std::uint64_t key = 0;
  for (std::size_t i = Prefix.size(); i < Prefix.size() + kKeyBytes; ++i) {
    key = key << 8 | (i < text.size() ? FoldByte(text[i]) : 0U);
  }
  return key;
}

std::optional<std::uint64_t> CSearchGuide::MakeValueKey(const c4_Row::Value& value) const {
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return MakeSortable(*integer) ^ Flip;
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr || !TextsAreEqual(std::string_view(*text).substr(0, Prefix.size()), Prefix)) return {};
  return MakeTextKey(*text) ^ Flip;
}

std::pair<std::size_t, std::size_t> CSearchGuide::Narrow(const c4_Row::Value& value) const {
  const auto key = MakeValueKey(value);
  if (!key || Marks.empty()) return {0, Size};
  const auto [first, last] = std::equal_range(Marks.begin(), Marks.end(), *key);
  const auto toPosition = [&](auto mark) {
    return static_cast<std::size_t>(mark - Marks.begin()) * kDistance;
  };
  // The row at the last mark below the key is below the value itself, that at the first above is above.
  return {first == Marks.begin() ? 0 : toPosition(first) - kDistance + 1,
          last == Marks.end() ? Size : toPosition(last)};
}
