#include "storage/Sequence.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace {

constexpr std::size_t kMarksASearch = 8;

std::vector<c4_Slot> ScanAll(const c4_Sequence& sequence, const c4_Row& values) {
  const CTableRows& rows = sequence.GetRows();
  std::vector<c4_Slot> matches;
  const std::size_t size = sequence.GetSize();
  for (std::size_t position = 0; position < size; ++position) {
    const c4_Slot slot = sequence.GetSlotAt(position);
    if (rows.Matches(slot, values)) matches.push_back(slot);
  }
  return matches;
}

/// The rows of `sequence` with these values, in its order. Asks an index where that is less work than to look
/// at every row.
std::vector<c4_Slot> FindMatches(const c4_Sequence& sequence, const c4_Row& values) {
  const CTableRows& rows = sequence.GetRows();
  const auto candidates = rows.FindCandidates(values, sequence.GetSize());
  if (!candidates) return ScanAll(sequence, values);
  std::vector<c4_Slot> matches;
  for (const auto& [value, slot] : *candidates) {
    if (rows.Matches(slot, values) && sequence.Contains(slot)) matches.push_back(slot);
  }
  // The index gives them in the table's order.
  if (sequence.GetSortKeys() != nullptr) {
    std::sort(matches.begin(), matches.end(),
              [&](c4_Slot left, c4_Slot right) { return sequence.IsBefore(left, right); });
  }
  return matches;
}

std::vector<c4_Slot> ListSlots(const c4_Sequence& sequence) {
  std::vector<c4_Slot> slots(sequence.GetSize());
  for (std::size_t position = 0; position < slots.size(); ++position) {
    slots[position] = sequence.GetSlotAt(position);
  }
  return slots;
}

}  // namespace

std::size_t c4_Sequence::LowerBound(c4_Slot slot) const {
  std::size_t first = 0;
  std::size_t count = GetSize();
  while (count > 0) {
    const std::size_t half = count / 2;
    if (IsBefore(GetSlotAt(first + half), slot)) {
      first += half + 1;
      count -= half + 1;
    } else {
      count = half;
    }
  }
  return first;
}

std::optional<std::size_t> c4_Sequence::GetPositionOf(c4_Slot slot) const {
  const std::size_t position = LowerBound(slot);
  if (position == GetSize() || GetSlotAt(position) != slot) return std::nullopt;
  return position;
}

void c4_Sequence::TakeOut(c4_Slot slot, ColumnNumber column) {
  TakeOutOfDerived(slot, column, !column);
  if (!column) Erase(slot);
}

void c4_Sequence::PutIn(c4_Slot slot, ColumnNumber column) {
  if (!column) Insert(slot);
  PutIntoDerived(slot, column, !column);
}

void c4_Sequence::TakeOutOfDerived(c4_Slot slot, ColumnNumber column, bool depends) {
  for (c4_Sequence* derived : Derived) {
    if (!derived->Accepts(slot)) continue;
    const bool concerned = depends || derived->DependsOn(*column);
    derived->TakeOutOfDerived(slot, column, concerned);
    if (concerned) derived->Erase(slot);
  }
}

void c4_Sequence::PutIntoDerived(c4_Slot slot, ColumnNumber column, bool depends) {
  for (c4_Sequence* derived : Derived) {
    if (!derived->Accepts(slot)) continue;
    const bool concerned = depends || derived->DependsOn(*column);
    if (concerned) derived->Insert(slot);
    derived->PutIntoDerived(slot, column, concerned);
  }
}

void c4_Sequence::DropRemoved() {
  EraseRemoved();
  for (c4_Sequence* derived : Derived) derived->DropRemoved();
}

void c4_Sequence::Rebuild() {
  Fill();
  for (c4_Sequence* derived : Derived) derived->Rebuild();
}

std::size_t CStoredSequence::GetSize() const { return HasOrder ? Order.size() : GetRows().GetSlotCount(); }

c4_Slot CStoredSequence::GetSlotAt(std::size_t position) const {
  return HasOrder ? Order[position] : static_cast<c4_Slot>(position);
}

bool CStoredSequence::Contains(c4_Slot slot) const { return GetRows().IsLive(slot); }

std::optional<std::size_t> CStoredSequence::GetPositionOf(c4_Slot slot) const {
  if (!Contains(slot)) return std::nullopt;
  if (!HasOrder) return slot;
  return static_cast<std::size_t>(std::lower_bound(Order.begin(), Order.end(), slot) - Order.begin());
}

void CStoredSequence::MakeOrder() {
  if (HasOrder) return;
  Order.resize(GetRows().GetSlotCount());
  std::iota(Order.begin(), Order.end(), c4_Slot{0});
  HasOrder = true;
}

void CStoredSequence::Insert(c4_Slot slot) {
  if (HasOrder) Order.push_back(slot);  // a new row's slot is the highest
}

void CStoredSequence::Erase(c4_Slot slot) {
  MakeOrder();
  Order.erase(std::lower_bound(Order.begin(), Order.end(), slot));
}

void CStoredSequence::EraseRemoved() {
  MakeOrder();
  std::erase_if(Order, [this](c4_Slot slot) { return !GetRows().IsLive(slot); });
}

void CStoredSequence::Fill() {
  HasOrder = false;
  Order = {};
  if (GetRows().GetRowCount() < GetRows().GetSlotCount()) EraseRemoved();
}

CDerivedSequence::CDerivedSequence(std::shared_ptr<c4_Sequence> base)
    : c4_Sequence(base->GetRows()), Base(std::move(base)) {
  Base->Derived.push_back(this);
}

CDerivedSequence::~CDerivedSequence() { std::erase(Base->Derived, this); }

void CDerivedSequence::Insert(c4_Slot slot) {
  ++Changes;
  Slots.insert(Slots.begin() + static_cast<std::ptrdiff_t>(LowerBound(slot)), slot);
}

void CDerivedSequence::Erase(c4_Slot slot) {
  const auto position = GetPositionOf(slot);
  ++Changes;
  if (position) Slots.erase(Slots.begin() + static_cast<std::ptrdiff_t>(*position));
}

void CDerivedSequence::EraseRemoved() {
  ++Changes;
  std::erase_if(Slots, [this](c4_Slot slot) { return !GetRows().IsLive(slot); });
}

CSelection::CSelection(std::shared_ptr<c4_Sequence> base, c4_Row values)
    : CDerivedSequence(std::move(base)), Values(std::move(values)) {
  CSelection::Fill();
}

bool CSelection::Accepts(c4_Slot slot) const { return GetRows().Matches(slot, Values); }

bool CSelection::DependsOn(std::size_t column) const {
  const auto& values = Values.GetValues();
  return std::any_of(values.begin(), values.end(),
                     [&](const auto& entry) { return GetRows().FindColumn(entry.first) == column; });
}

void CSelection::Fill() {
  Slots = FindMatches(GetBase(), Values);
  Slots.shrink_to_fit();
}

CSorting::CSorting(std::shared_ptr<c4_Sequence> base, std::vector<SortKey> keys)
    : CDerivedSequence(std::move(base)), Keys(std::move(keys)) {
  CSorting::Fill();
}

bool CSorting::IsBefore(c4_Slot left, c4_Slot right) const {
  const int order = CompareByKeys(GetRows(), Keys, left, right);
  return order != 0 ? order < 0 : GetBase().IsBefore(left, right);
}

bool CSorting::DependsOn(std::size_t column) const {
  return std::any_of(Keys.begin(), Keys.end(),
                     [&](const SortKey& key) { return GetRows().FindColumn(key.Property) == column; });
}

void CSorting::Fill() {
  ++Changes;
  Slots = SortSlots(GetRows(), Keys, ListSlots(GetBase()));
}

std::pair<std::size_t, std::size_t> CSorting::NarrowSearch(const c4_Row& values) const {
  if (GuidedChanges != Changes) {
    Guide.reset();
    Searches = 0;
    GuidedChanges = Changes;
  }
  const auto value = std::find_if(
      values.GetValues().begin(), values.GetValues().end(),
      [this](const auto& entry) { return !Keys.empty() && entry.first == Keys.front().Property; });
  if (value == values.GetValues().end()) return {0, Slots.size()};
  // The guide is made only after enough searches to pay for it, so an import never makes one.
  if (!Guide && ++Searches * kMarksASearch > CSearchGuide::GetCost(Slots.size())) {
    Guide.emplace(GetRows(), Keys.front(), Slots);
  }
  return Guide ? Guide->Narrow(value->second) : std::pair(std::size_t{0}, Slots.size());
}
