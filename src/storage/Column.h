#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "storage/Row.h"

/// Frees memory that was reserved and not used.
template <typename T>
void TrimVector(std::vector<T>& values) {
  if (values.capacity() > values.size() + values.size() / 16) values.shrink_to_fit();
}

/// The texts of one column, by slot, in one block of memory. A text that equals one of the texts before it,
/// as the folder of a photo and the dates of its stamps mostly do, shares the place of that one and costs 4
/// bytes.
class CTextColumn {
 public:
  /// Valid until the next change of the column.
  std::string_view operator[](std::size_t slot) const { return GetTextAt(Places[slot]); }

  void Append(std::string_view text);
  void Set(std::size_t slot, std::string_view text);
  /// Drops from the end or appends empty texts.
  void Resize(std::size_t size);

  void Reserve(std::size_t size);
  /// Frees memory that was reserved and not used.
  void Trim();

  // A place holds a text for one slot or more. Equal texts may have several places.

  std::uint32_t GetPlace(std::size_t slot) const { return Places[slot]; }
  std::size_t GetPlaceCount() const { return Texts.size(); }
  std::string_view GetTextAt(std::size_t place) const {
    return {Bytes.data() + Texts[place].Offset, Texts[place].Length};
  }

 private:
  struct Text {
    std::uint32_t Offset;  // in Bytes
    std::uint32_t Length;
    std::uint32_t Uses;  // how many slots share it
  };

  std::uint32_t Occupy(std::string_view text);
  std::uint32_t MakePlace(std::string_view text);
  void Release(std::uint32_t place);
  void Compact();

  std::vector<std::uint32_t> Places;  // by slot
  std::vector<Text> Texts;            // by place
  std::vector<char> Bytes;
  std::vector<std::uint32_t> Free;    // places without a use
  std::vector<std::uint32_t> Recent;  // places of recent texts, by a hash of the text
  std::size_t UnusedBytes = 0;
};

/// The slots of a table ordered by the values of one integer column, equal ones by slot: 8 bytes a row. The
/// values stand beside the slots, so that a search reads only the index.
class CIntegerIndex {
 public:
  struct Entry {
    std::int32_t Value;
    c4_Slot Slot;
    friend bool operator==(const Entry&, const Entry&) = default;
    friend bool operator<(const Entry& left, const Entry& right) {
      return left.Value != right.Value ? left.Value < right.Value : left.Slot < right.Slot;
    }
  };

  CIntegerIndex(std::span<const std::int32_t> values, const std::vector<c4_Slot>& slots);

  /// The entries of a value, ascending by slot.
  std::span<const Entry> Find(std::int32_t value) const;
  void Insert(const Entry& entry);
  void Erase(const Entry& entry);

  template <typename IsGone>
  void EraseIf(const IsGone& isGone) {
    std::erase_if(Entries, [&](const Entry& entry) { return isGone(entry.Slot); });
  }

 private:
  using Place = std::vector<Entry>::const_iterator;
  Place FindFirst(std::int32_t value) const;

  std::vector<Entry> Entries;
};

/// One property's values, by slot. Blocks of bytes are not held.
class CColumn {
 public:
  /// `size` values of 0, or empty ones.
  CColumn(const c4_Property& property, std::size_t size);

  void Reserve(std::size_t size);
  /// Drops from the end or appends 0 or empty.
  void Resize(std::size_t size);
  /// Frees memory that was reserved and not used.
  void Trim();

  /// Sets the value, not the index.
  void Assign(c4_Slot slot, const c4_Row::Value& value);
  /// Whether the slot holds exactly this value. False for a block of bytes, which is not held in memory.
  bool Holds(c4_Slot slot, const c4_Row::Value& value) const;

  c4_Property Property;
  c4_Type Type;
  std::vector<std::int32_t> Integers;  // one of the two is in use, as Type says
  CTextColumn Texts;
  mutable std::optional<CIntegerIndex> Index;  // made when a search first asks for it
};
