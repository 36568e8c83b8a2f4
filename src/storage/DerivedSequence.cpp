#include "storage/DerivedSequence.h"

#include <algorithm>
#include <span>

#include "storage/SlotSort.h"
#include "storage/Table.h"

namespace {

constexpr std::size_t kMarksASearch = 8;

std::vector<c4_Slot> ScanAll(const c4_Sequence& sequence, const c4_Row& values) {
  const c4_Table& table = sequence.GetTable();
  std::vector<c4_Slot> matches;
  const std::size_t size = sequence.GetSize();
  for (std::size_t position = 0; position < size; ++position) {
    const c4_Slot slot = sequence.GetSlotAt(position);
    if (table.Matches(slot, values)) matches.push_back(slot);
  }
  return matches;
}

}  // namespace

std::vector<c4_Slot> FindMatches(const c4_Sequence& sequence, const c4_Row& values) {
  c4_Table& table = sequence.GetTable();
  const auto candidates = table.FindCandidates(values, sequence.GetSize());
  if (!candidates) return ScanAll(sequence, values);
  std::vector<c4_Slot> matches;
  for (const auto& [value, slot] : *candidates) {
    if (table.Matches(slot, values) && sequence.Contains(slot)) matches.push_back(slot);
  }
  // The index gives them in the table's order.
  if (sequence.GetSortKeys() != nullptr) {
    std::sort(matches.begin(), matches.end(),
              [&](c4_Slot left, c4_Slot right) { return sequence.IsBefore(left, right); });
  }
  return matches;
}

CDerivedSequence::CDerivedSequence(std::shared_ptr<c4_Sequence> base)
    : c4_Sequence(base->GetTable()), Base(std::move(base)) {
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
  std::erase_if(Slots, [this](c4_Slot slot) { return !GetTable().IsLive(slot); });
}

CSelection::CSelection(std::shared_ptr<c4_Sequence> base, c4_Row values)
    : CDerivedSequence(std::move(base)), Values(std::move(values)) {
  CSelection::Fill();
}

bool CSelection::Accepts(c4_Slot slot) const { return GetTable().Matches(slot, Values); }

bool CSelection::DependsOn(std::size_t column) const {
  const auto& values = Values.GetValues();
  return std::any_of(values.begin(), values.end(),
                     [&](const auto& entry) { return GetTable().FindColumn(entry.first) == column; });
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
  const int order = CompareByKeys(GetTable(), Keys, left, right);
  return order != 0 ? order < 0 : GetBase().IsBefore(left, right);
}

bool CSorting::DependsOn(std::size_t column) const {
  return std::any_of(Keys.begin(), Keys.end(),
                     [&](const SortKey& key) { return GetTable().FindColumn(key.Property) == column; });
}

void CSorting::Fill() {
  ++Changes;
  Slots = SortSlots(GetBase(), Keys);
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
  // Between two changes a search pays for a few marks at most, an import for none.
  if (!Guide && ++Searches * kMarksASearch > CSearchGuide::GetCost(Slots.size())) {
    Guide.emplace(GetTable(), Keys.front(), Slots);
  }
  return Guide ? Guide->Narrow(value->second) : std::pair(std::size_t{0}, Slots.size());
}
