#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "storage/Row.h"
#include "storage/TableRows.h"

struct SortKey {
  c4_Property Property;
  bool Descending;
};

/// Below, equal to or above 0.
int CompareByKeys(const CTableRows& rows, const std::vector<SortKey>& keys, c4_Slot left, c4_Slot right);

/// The slots in the order of the keys; equal ones stay in the order that they come in.
std::vector<c4_Slot> SortSlots(const CTableRows& rows, const std::vector<SortKey>& keys,
                               std::vector<c4_Slot> slots);

/// The beginnings of the sort keys of every 32nd row of a sorted sequence, close together in memory. A
/// search looks there first and is left with some dozens of rows: in a large view nearly every access to a
/// row waits for memory. Valid until the sequence changes.
class CSearchGuide {
 public:
  CSearchGuide(const CTableRows& rows, const SortKey& key, std::span<const c4_Slot> slots);

  /// How many rows a guide for a sequence of that size looks at.
  static std::size_t GetCost(std::size_t size) { return size / kDistance; }

  /// The positions, first and last, between which the first row that isn't below the value stands.
  std::pair<std::size_t, std::size_t> Narrow(const c4_Row::Value& value) const;

 private:
  static constexpr std::size_t kDistance = 32;

  /// 24 bytes after the common beginning tell most folders apart. An integer uses the first word alone.
  using Mark = std::array<std::uint64_t, 3>;

  Mark MakeIntegerMark(std::int32_t value) const;
  Mark MakeTextMark(std::string_view text) const;
  std::optional<Mark> MakeValueMark(const c4_Row::Value& value) const;

  std::size_t Size;
  bool IsText = false;
  std::uint64_t Flip;       // all ones for the descending order
  std::string Prefix;       // folded; all texts of the sequence begin with it
  std::vector<Mark> Marks;  // never descending; the i-th is of position i * kDistance
};
