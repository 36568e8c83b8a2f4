#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "storage/Row.h"
#include "storage/SlotSort.h"
#include "storage/TableRows.h"

/// An ordered choice of a table's rows, and the choices derived from it. Each has a total order of slots, so
/// a row's position is found by binary search, and a change moves the one row concerned: it is taken out of
/// every derived sequence whose order or choice depends on the property, and put in again after the change.
class c4_Sequence {
 public:
  explicit c4_Sequence(const CTableRows& rows) : Rows(rows) {}
  virtual ~c4_Sequence() = default;
  c4_Sequence(const c4_Sequence&) = delete;
  c4_Sequence& operator=(const c4_Sequence&) = delete;

  const CTableRows& GetRows() const { return Rows; }

  virtual std::size_t GetSize() const = 0;
  virtual c4_Slot GetSlotAt(std::size_t position) const = 0;
  /// Whether `left` stands before `right`, or would if both were in the sequence.
  virtual bool IsBefore(c4_Slot left, c4_Slot right) const = 0;
  /// Whether a row that is in the base is in this sequence.
  virtual bool Accepts(c4_Slot slot) const = 0;
  virtual bool Contains(c4_Slot slot) const = 0;
  /// What the rows are sorted by, through selections; null if they stand in the order of the table.
  virtual const std::vector<SortKey>* GetSortKeys() const = 0;

  virtual std::optional<std::size_t> GetPositionOf(c4_Slot slot) const;

  /// The range of positions, first and last, that a binary search for the values has to look at. All
  /// positions unless a derived class can narrow it.
  virtual std::pair<std::size_t, std::size_t> NarrowSearch(const c4_Row&) const { return {0, GetSize()}; }

  /// To be called before a change of `column` of the row, or, without a column, before its removal: takes
  /// the row out of the sequences that depend on it.
  void TakeOut(c4_Slot slot, std::optional<std::size_t> column);
  /// To be called after the change, or after the row was added.
  void PutIn(c4_Slot slot, std::optional<std::size_t> column);
  /// To be called after many rows were removed at once.
  void DropRemoved();
  /// To be called after the table was loaded or emptied.
  void Rebuild();

 protected:
  /// The first position whose row isn't before the slot.
  std::size_t LowerBound(c4_Slot slot) const;

 private:
  friend class CDerivedSequence;
  using ColumnNumber = std::optional<std::size_t>;

  virtual bool DependsOn(std::size_t column) const = 0;
  virtual void Insert(c4_Slot slot) = 0;
  virtual void Erase(c4_Slot slot) = 0;
  virtual void EraseRemoved() = 0;
  virtual void Fill() = 0;

  void TakeOutOfDerived(c4_Slot slot, ColumnNumber column, bool depends);
  void PutIntoDerived(c4_Slot slot, ColumnNumber column, bool depends);

  const CTableRows& Rows;
  std::vector<c4_Sequence*> Derived;  // each removes itself in its destructor
};

/// All rows of a table, in the order of the file.
class CStoredSequence final : public c4_Sequence {
 public:
  using c4_Sequence::c4_Sequence;

  std::size_t GetSize() const override;
  c4_Slot GetSlotAt(std::size_t position) const override;
  bool IsBefore(c4_Slot left, c4_Slot right) const override { return left < right; }
  bool Accepts(c4_Slot) const override { return true; }
  bool Contains(c4_Slot slot) const override;
  std::optional<std::size_t> GetPositionOf(c4_Slot slot) const override;
  const std::vector<SortKey>* GetSortKeys() const override { return nullptr; }

 private:
  bool DependsOn(std::size_t) const override { return false; }
  void Insert(c4_Slot slot) override;
  void Erase(c4_Slot slot) override;
  void EraseRemoved() override;
  void Fill() override;
  void MakeOrder();

  bool HasOrder = false;       // while no row was removed the position of a row is its slot
  std::vector<c4_Slot> Order;  // ascending
};

/// A sequence that holds a part of its base's rows, or all, in an order of its own. It keeps the base alive
/// and follows its changes.
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

  // Made after so many searches without a change that it is worth its cost.
  mutable std::optional<CSearchGuide> Guide;
  mutable std::uint64_t GuidedChanges = 0;  // the state of Slots that the guide and the count are for
  mutable std::size_t Searches = 0;
};
