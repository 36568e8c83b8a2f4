#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "storage/Property.h"

class c4_Table;

/// A row by itself, in no view: values by property. Used to add rows and to say what is looked for.
class c4_Row {
 public:
  using Value = std::variant<std::int32_t, std::string, c4_Bytes>;

  c4_Row() = default;
  c4_Row(c4_Property property, Value value) { Values.emplace_back(property, std::move(value)); }

  const std::vector<std::pair<c4_Property, Value>>& GetValues() const { return Values; }

  /// The properties of both; where both have one, the right one's value stands.
  friend c4_Row operator+(c4_Row left, const c4_Row& right);

 private:
  std::vector<std::pair<c4_Property, Value>> Values;
};

/// A row of a stored view, by identity: rows added, removed or reordered around it don't shift it. A
/// small value, copied freely. Once its row is removed, or the storage closed, it is invalid: reads then
/// give 0 or empty and writes do nothing.
class c4_RowRef {
 public:
  c4_RowRef() = default;
  bool IsValid() const;

 private:
  friend class c4_IntProp;
  friend class c4_StringProp;
  friend class c4_BytesProp;
  friend class c4_View;
  c4_RowRef(std::shared_ptr<c4_Table> table, std::uint32_t slot, std::int64_t rowId);

  std::shared_ptr<c4_Table> Table;
  std::uint32_t Slot = 0;  // where the row stood when the reference was made; RowId decides
  std::int64_t RowId = 0;
};
