#include "storage/Row.h"

#include <algorithm>

#include "storage/DataThread.h"
#include "storage/Table.h"

c4_Row operator+(c4_Row left, const c4_Row& right) {
  for (const auto& [property, value] : right.Values) {
    const auto same = std::find_if(left.Values.begin(), left.Values.end(),
                                   [&name = property](const auto& entry) { return entry.first == name; });
    if (same != left.Values.end()) {
      same->second = value;
    } else {
      left.Values.emplace_back(property, value);
    }
  }
  return left;
}

c4_RowRef::c4_RowRef(std::shared_ptr<c4_Table> table, std::uint32_t slot, std::int64_t rowId)
    : Table(std::move(table)), Slot(slot), RowId(rowId) {}

bool c4_RowRef::IsValid() const {
  AssertDataThread();
  return Table && Table->FindSlot({Slot, RowId}).has_value();
}
