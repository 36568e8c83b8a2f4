#include "storage/Property.h"

#include <deque>
#include <mutex>

#include "storage/DataThread.h"
#include "storage/Row.h"
#include "storage/Table.h"
#include "storage/TextOrder.h"

namespace {

/// All properties of the process. Static objects make properties before main runs, on whatever thread, so
/// the list has a lock of its own. A deque doesn't move its elements.
class CPropertyList {
 public:
  struct Entry {
    std::string Name;
    c4_Type Type;
  };

  static CPropertyList& GetInstance() {
    static CPropertyList list;
    return list;
  }

  int FindOrAdd(std::string_view name, c4_Type type) {
    const std::lock_guard lock(Mutex);
    for (std::size_t id = 0; id < Entries.size(); ++id) {
      if (Entries[id].Type == type && TextsAreEqual(Entries[id].Name, name)) return static_cast<int>(id);
    }
    Entries.push_back({std::string(name), type});
    return static_cast<int>(Entries.size() - 1);
  }

  const Entry& Get(int id) {
    const std::lock_guard lock(Mutex);
    return Entries[static_cast<std::size_t>(id)];
  }

 private:
  std::mutex Mutex;
  std::deque<Entry> Entries;
};

}  // namespace

c4_Property::c4_Property(std::string_view name, c4_Type type)
    : Id(CPropertyList::GetInstance().FindOrAdd(name, type)) {}

const std::string& c4_Property::Name() const { return CPropertyList::GetInstance().Get(Id).Name; }

c4_Type c4_Property::Type() const { return CPropertyList::GetInstance().Get(Id).Type; }

c4_Row c4_IntProp::operator[](std::int32_t value) const { return {*this, value}; }

std::int32_t c4_IntProp::Get(const c4_RowRef& row) const {
  AssertDataThread();
  return row.Table ? row.Table->GetInteger(*this, {row.Slot, row.RowId}) : 0;
}

void c4_IntProp::Set(const c4_RowRef& row, std::int32_t value) const {
  AssertDataThread();
  if (row.Table) row.Table->Set(*this, {row.Slot, row.RowId}, c4_Row::Value(value));
}

c4_Row c4_StringProp::operator[](std::string_view value) const { return {*this, std::string(value)}; }

std::string_view c4_StringProp::Get(const c4_RowRef& row) const {
  AssertDataThread();
  return row.Table ? row.Table->GetText(*this, {row.Slot, row.RowId}) : std::string_view();
}

void c4_StringProp::Set(const c4_RowRef& row, std::string_view value) const {
  AssertDataThread();
  if (row.Table) row.Table->Set(*this, {row.Slot, row.RowId}, c4_Row::Value(std::string(value)));
}

c4_Row c4_BytesProp::operator[](std::span<const std::uint8_t> value) const {
  return {*this, c4_Bytes(value.begin(), value.end())};
}

c4_Bytes c4_BytesProp::Get(const c4_RowRef& row) const {
  AssertDataThread();
  return row.Table ? row.Table->GetBytes(*this, {row.Slot, row.RowId}) : c4_Bytes();
}

void c4_BytesProp::Set(const c4_RowRef& row, std::span<const std::uint8_t> value) const {
  AssertDataThread();
  if (row.Table)
    row.Table->Set(*this, {row.Slot, row.RowId}, c4_Row::Value(c4_Bytes(value.begin(), value.end())));
}
