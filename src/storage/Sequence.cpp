#include "storage/Sequence.h"

#include <algorithm>
#include <numeric>

#include "storage/Table.h"

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

void c4_Sequence::TakeOut(c4_Slot slot, Column column) {
  TakeOutOfDerived(slot, column, !column);
  if (!column) Erase(slot);
}

void c4_Sequence::PutIn(c4_Slot slot, Column column) {
  if (!column) Insert(slot);
  PutIntoDerived(slot, column, !column);
}

void c4_Sequence::TakeOutOfDerived(c4_Slot slot, Column column, bool depends) {
  for (c4_Sequence* derived : Derived) {
    if (!derived->Accepts(slot)) continue;
    const bool concerned = depends || derived->DependsOn(*column);
    derived->TakeOutOfDerived(slot, column, concerned);
    if (concerned) derived->Erase(slot);
  }
}

void c4_Sequence::PutIntoDerived(c4_Slot slot, Column column, bool depends) {
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

std::size_t CStoredSequence::GetSize() const { return HasOrder ? Order.size() : GetTable().GetSlotCount(); }

c4_Slot CStoredSequence::GetSlotAt(std::size_t position) const {
  return HasOrder ? Order[position] : static_cast<c4_Slot>(position);
}

bool CStoredSequence::Contains(c4_Slot slot) const { return GetTable().IsLive(slot); }

std::optional<std::size_t> CStoredSequence::GetPositionOf(c4_Slot slot) const {
  if (!Contains(slot)) return std::nullopt;
  if (!HasOrder) return slot;
  return static_cast<std::size_t>(std::lower_bound(Order.begin(), Order.end(), slot) - Order.begin());
}

void CStoredSequence::MakeOrder() {
  if (HasOrder) return;
  Order.resize(GetTable().GetSlotCount());
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
  std::erase_if(Order, [this](c4_Slot slot) { return !GetTable().IsLive(slot); });
}

void CStoredSequence::Fill() {
  HasOrder = false;
  Order = {};
  if (GetTable().HasRemovedRows()) EraseRemoved();
}
