#include "storage/SearchGuide.h"

#include <algorithm>

#include "platform/Ascii.h"
#include "storage/KeyedSlots.h"
#include "storage/Table.h"
#include "storage/TextOrder.h"

namespace {

constexpr std::size_t kWordBytes = 8;

std::string FindCommonPrefix(std::string_view left, std::string_view right) {
  std::string prefix;
  for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
    if (platform::FoldByte(left[i]) != platform::FoldByte(right[i])) break;
    prefix += static_cast<char>(platform::FoldByte(left[i]));
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
    Marks.push_back(IsText ? MakeTextMark(column.Texts[slot]) : MakeIntegerMark(column.Integers[slot]));
  }
}

CSearchGuide::Mark CSearchGuide::MakeIntegerMark(std::int32_t value) const {
  return {MakeSortable(value) ^ Flip, 0, 0};
}

/// The bytes after the common beginning. Different texts may have one mark, but never in the wrong order.
CSearchGuide::Mark CSearchGuide::MakeTextMark(std::string_view text) const {
  Mark mark{};
  std::size_t at = Prefix.size();
  for (std::uint64_t& word : mark) {
    for (const std::size_t end = at + kWordBytes; at < end; ++at) {
      word = word << 8 | (at < text.size() ? platform::FoldByte(text[at]) : 0U);
    }
    word ^= Flip;
  }
  return mark;
}

std::optional<CSearchGuide::Mark> CSearchGuide::MakeValueMark(const c4_Row::Value& value) const {
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return MakeIntegerMark(*integer);
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr || !TextsAreEqual(std::string_view(*text).substr(0, Prefix.size()), Prefix)) return {};
  return MakeTextMark(*text);
}

std::pair<std::size_t, std::size_t> CSearchGuide::Narrow(const c4_Row::Value& value) const {
  const auto mark = MakeValueMark(value);
  if (!mark || Marks.empty()) return {0, Size};
  const auto [first, last] = std::equal_range(Marks.begin(), Marks.end(), *mark);
  const auto toPosition = [&](auto place) {
    return static_cast<std::size_t>(place - Marks.begin()) * kDistance;
  };
  // The row at the last mark below that of the value is below the value itself, so the one at the first above
  // is above.
  return {first == Marks.begin() ? 0 : toPosition(first) - kDistance + 1,
          last == Marks.end() ? Size : toPosition(last)};
}
