#include "storage/SlotSort.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <span>

#include "platform/Ascii.h"
#include "storage/KeyedSlots.h"

namespace {

using Run = std::span<KeyedSlot>;

/// Texts are compared by chunks of this many bytes; the eighth byte of a key says how many are in use, so
/// that a text which ends stands before one that goes on with NUL.
constexpr std::size_t kChunk = 7;
/// Texts that are equal in more than this many chunks are sorted by plain comparison.
constexpr std::size_t kMaximumDepth = 64;

/// If on average this many rows share a text, the texts are sorted first and the rows by their ranks.
constexpr std::size_t kWorthRanks = 4;

std::uint64_t MakeTextKey(std::string_view text, std::size_t depth) {
  const std::size_t start = std::min(text.size(), depth * kChunk);
  const std::size_t count = std::min(text.size() - start, kChunk);
  std::uint64_t key = 0;
  for (std::size_t i = 0; i < kChunk; ++i) {
    key = (key << 8) | (i < count ? platform::FoldByte(text[start + i]) : 0U);
  }
  return (key << 8) | count;
}

/// Sorts by texts; `flip` is all ones for the descending order. Calls `onEqual` with each run of equal ones.
template <typename GetText>
void SortByTexts(Run run, const GetText& getText, std::uint64_t flip, std::size_t depth,
                 const std::function<void(Run)>& onEqual) {
  if (depth == kMaximumDepth) {
    const auto compare = [&](const KeyedSlot& left, const KeyedSlot& right) {
      const int order = CompareTexts(getText(left.Slot), getText(right.Slot));
      return flip != 0 ? -order : order;
    };
    std::stable_sort(run.begin(), run.end(),
                     [&](const auto& left, const auto& right) { return compare(left, right) < 0; });
    for (std::size_t i = 0, key = 0; i < run.size(); ++i) {
      if (i > 0 && compare(run[i - 1], run[i]) != 0) ++key;
      run[i].Key = key;
    }
    ForEachEqualRun(run, onEqual);
    return;
  }
  for (KeyedSlot& slot : run) slot.Key = MakeTextKey(getText(slot.Slot), depth) ^ flip;
  SortKeyedSlots(run);
  ForEachEqualRun(run, [&](Run equal) {
    if (((equal[0].Key ^ flip) & 0xff) < kChunk) {
      onEqual(equal);
    } else {
      SortByTexts(equal, getText, flip, depth + 1, onEqual);
    }
  });
}

/// For each place of the column a number in the order of the texts, equal for equal texts.
std::vector<std::uint32_t> RankTexts(const CTextColumn& texts) {
  std::vector<KeyedSlot> places(texts.GetPlaceCount());
  for (std::size_t i = 0; i < places.size(); ++i) places[i].Slot = static_cast<c4_Slot>(i);
  const auto getText = [&](c4_Slot place) { return texts.GetTextAt(place); };
  SortByTexts(places, getText, 0, 0, [](Run) {});
  std::vector<std::uint32_t> ranks(places.size());
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (i > 0 && !TextsAreEqual(getText(places[i - 1].Slot), getText(places[i].Slot))) ++rank;
    ranks[places[i].Slot] = rank;
  }
  return ranks;
}

int CompareColumn(const CTableRows& rows, const SortKey& key, c4_Slot left, c4_Slot right) {
  const auto column = rows.FindColumn(key.Property);
  if (!column) return 0;
  const int order = rows.CompareRows(*column, left, right);
  return key.Descending ? -order : order;
}

/// Sorts by one key after the other: runs that are equal in one are sorted by the next. Integers, and texts
/// by their ranks, are taken two at a time.
class CSlotSorter {
 public:
  CSlotSorter(const CTableRows& rows, const std::vector<SortKey>& keys, std::size_t size) : Rows(rows) {
    for (const SortKey& key : keys) {
      if (const auto number = rows.FindColumn(key.Property)) Keys.push_back(MakeKey(key, *number, size));
    }
  }

  void Sort(Run run) { SortFrom(run, 0); }

 private:
  struct Key {
    const CColumn& Column;
    SortKey Source;
    std::vector<std::uint32_t> Ranks;  // of a text column, where worth it

    bool IsNumber() const { return Column.Type == c4_Type::Integer || !Ranks.empty(); }
  };

  Key MakeKey(const SortKey& source, std::size_t number, std::size_t size) const {
    const CColumn& column = Rows.GetColumn(number);
    Key key{column, source, {}};
    const bool isText = column.Type == c4_Type::Text;
    if (isText && column.Texts.GetPlaceCount() * kWorthRanks <= size) key.Ranks = RankTexts(column.Texts);
    return key;
  }

  void SortFrom(Run run, std::size_t index) {
    if (index == Keys.size() || run.size() < 2) return;
    const Key& key = Keys[index];
    if (key.IsNumber()) {
      SortByNumbers(run, index);
    } else if (key.Column.Type == c4_Type::Text) {
      const CTextColumn& texts = key.Column.Texts;
      SortByTexts(
          run, [&](c4_Slot slot) { return texts[slot]; }, key.Source.Descending ? ~std::uint64_t{0} : 0, 0,
          [&](Run equal) { SortFrom(equal, index + 1); });
    } else {
      SortByBytes(run, index);
    }
  }

  void SortByNumbers(Run run, std::size_t index) {
    for (KeyedSlot& slot : run) slot.Key = 0;
    AddNumber(run, Keys[index++]);
    if (index < Keys.size() && Keys[index].IsNumber()) AddNumber(run, Keys[index++]);
    SortKeyedSlots(run);
    if (index == Keys.size()) return;
    ForEachEqualRun(run, [&](Run equal) { SortFrom(equal, index); });
  }

  static void AddNumber(Run run, const Key& key) {
    const std::uint32_t flip = key.Source.Descending ? ~std::uint32_t{0} : 0;
    if (key.Column.Type == c4_Type::Integer) {
      const auto& integers = key.Column.Integers;
      for (KeyedSlot& slot : run) slot.Key = slot.Key << 32 | (MakeSortable(integers[slot.Slot]) ^ flip);
    } else {
      const CTextColumn& texts = key.Column.Texts;
      for (KeyedSlot& slot : run) slot.Key = slot.Key << 32 | (key.Ranks[texts.GetPlace(slot.Slot)] ^ flip);
    }
  }

  /// Reads both blocks for each comparison: correct but slow. The program never sorts by bytes.
  void SortByBytes(Run run, std::size_t index) const {
    std::stable_sort(run.begin(), run.end(), [&](const KeyedSlot& left, const KeyedSlot& right) {
      for (std::size_t key = index; key < Keys.size(); ++key) {
        const int order = CompareColumn(Rows, Keys[key].Source, left.Slot, right.Slot);
        if (order != 0) return order < 0;
      }
      return false;
    });
  }

  const CTableRows& Rows;
  std::vector<Key> Keys;
};

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

int CompareByKeys(const CTableRows& rows, const std::vector<SortKey>& keys, c4_Slot left, c4_Slot right) {
  for (const SortKey& key : keys) {
    const int order = CompareColumn(rows, key, left, right);
    if (order != 0) return order;
  }
  return 0;
}

std::vector<c4_Slot> SortSlots(const CTableRows& rows, const std::vector<SortKey>& keys,
                               std::vector<c4_Slot> slots) {
  std::vector<KeyedSlot> keyed;
  keyed.reserve(slots.size());
  for (const c4_Slot slot : slots) keyed.push_back({0, slot});
  CSlotSorter(rows, keys, keyed.size()).Sort(keyed);
  for (std::size_t i = 0; i < keyed.size(); ++i) slots[i] = keyed[i].Slot;
  return slots;
}

CSearchGuide::CSearchGuide(const CTableRows& rows, const SortKey& key, std::span<const c4_Slot> slots)
    : Size(slots.size()), Flip(key.Descending ? ~std::uint64_t{0} : 0) {
  const auto number = rows.FindColumn(key.Property);
  if (!number || slots.empty()) return;
  const CColumn& column = rows.GetColumn(*number);
  IsText = column.Type == c4_Type::Text;
  // The texts are sorted, so all have what the first and the last have in common.
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

/// The bytes after the common beginning. Different texts may have equal marks, but never marks in the wrong
/// order.
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
