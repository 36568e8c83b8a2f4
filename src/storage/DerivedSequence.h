#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "storage/Row.h"
#include "storage/SearchGuide.h"
#include "storage/Sequence.h"

/// A sequence that holds a part of its base's rows, or all, in an order of its own. It keeps the base
/// alive, and follows it until it goes itself.
class CDerivedSequence : public c4_Sequence {
 public:
  ~CDerivedSequence() override;

  std::size_t GetSize() const override { return Slots.size(); }
  c4_Slot GetSlotAt(std::size_t position) const override { return Slots[position]; }

 protected:
  explicit CDerivedSequence(std::shared_ptr<c4_Sequence> base);
  c4_Sequence& GetBase() const { return *Base; }

  std::vector<c4_Slot> Slots;
  std::uint64_t Changes = 0;  // of Slots

 private:
  void Insert(c4_Slot slot) override;
  void Erase(c4_Slot slot) override;
  void EraseRemoved() override;

  std::shared_ptr<c4_Sequence> Base;
};

/// The rows of the base with given values, in the base's order.
class CSelection final : public CDerivedSequence {
 public:
  CSelection(std::shared_ptr<c4_Sequence> base, c4_Row values);

  bool IsBefore(c4_Slot left, c4_Slot right) const override { return GetBase().IsBefore(left, right); }
  bool Accepts(c4_Slot slot) const override;
  bool Contains(c4_Slot slot) const override { return Accepts(slot) && GetBase().Contains(slot); }
  const std::vector<SortKey>* GetSortKeys() const override { return GetBase().GetSortKeys(); }

 private:
  bool DependsOn(std::size_t column) const override;
  void Fill() override;

  c4_Row Values;
};

/// The rows of the base in the order of some properties; equal rows in the base's order.
class CSorting final : public CDerivedSequence {
 public:
  CSorting(std::shared_ptr<c4_Sequence> base, std::vector<SortKey> keys);

  bool IsBefore(c4_Slot left, c4_Slot right) const override;
  bool Accepts(c4_Slot) const override { return true; }
  bool Contains(c4_Slot slot) const override { return GetBase().Contains(slot); }
  const std::vector<SortKey>* GetSortKeys() const override { return &Keys; }
  std::pair<std::size_t, std::size_t> NarrowSearch(const c4_Row& values) const override;

 private:
  bool DependsOn(std::size_t column) const override;
  void Fill() override;

  std::vector<SortKey> Keys;

  // Made once there were enough searches since the last change to be worth it.
  mutable std::optional<CSearchGuide> Guide;
  mutable std::uint64_t GuidedChanges = 0;  // the state of Slots that the guide and the count are for
  mutable std::size_t Searches = 0;
};

/// The rows of `sequence` with these values, in its order. Asks an index of the table where that is less
/// work than to look at every row.
std::vector<c4_Slot> FindMatches(const c4_Sequence& sequence, const c4_Row& values);
