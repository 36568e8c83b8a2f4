#include "storage/Storage.h"

#include <map>
#include <utility>
#include <vector>

#include "base/Exceptions.h"
#include "storage/DataThread.h"
#include "storage/Database.h"
#include "storage/StorageDescription.h"
#include "storage/Table.h"
#include "storage/Transaction.h"

namespace {

c4_Property MakeProperty(const ViewDescription::Column& column) {
  switch (column.Type) {
    case c4_Type::Integer:
      return c4_IntProp(column.Name);
    case c4_Type::Text:
      return c4_StringProp(column.Name);
    case c4_Type::Bytes:
      break;
  }
  return c4_BytesProp(column.Name);
}

}  // namespace

class c4_Storage::Impl {
 public:
  Impl(const std::string& path, Mode mode) : Database(path, mode == Mode::ReadOnly), Transaction(Database) {}
  ~Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  std::shared_ptr<c4_Table> GetAs(const ViewDescription& description);

  CDatabase Database;
  CTransaction Transaction;

 private:
  std::shared_ptr<c4_Table> OpenTable(const std::string& name, const std::vector<c4_Property>& properties);

  std::map<std::string, std::shared_ptr<c4_Table>, TextOrder> Tables;
};

std::shared_ptr<c4_Table> c4_Storage::Impl::GetAs(const ViewDescription& description) {
  std::vector<c4_Property> properties;
  for (const auto& column : description.Columns) properties.push_back(MakeProperty(column));
  std::shared_ptr<c4_Table> table = OpenTable(description.Name, properties);
  if (!Database.IsReadOnly() && !table->IsStored()) {
    Transaction.Run([&] { table->Store(); });
  }
  return table;
}

/// The table with the properties, loaded. The storage keeps it only if that succeeds.
std::shared_ptr<c4_Table> c4_Storage::Impl::OpenTable(const std::string& name,
                                                      const std::vector<c4_Property>& properties) {
  const auto known = Tables.find(name);
  if (known != Tables.end() && known->second->HasAll(properties)) return known->second;
  auto table = known != Tables.end() ? known->second : std::make_shared<c4_Table>(name, Transaction);
  try {
    table->Declare(properties);
  } catch (const CDatabaseError& error) {
    if (error.IsDamage()) throw CDamagedStorage(Database.Describe("read", error));
    throw CError(Database.Describe("read", error));
  }
  if (!table->IsInFile() && !Database.IsOurs()) {
    throw CDamagedStorage(
        Database.Describe("opened", CException(std::string("it belongs to another program"))));
  }
  if (known == Tables.end()) {
    Tables.emplace(name, table);
    Transaction.Attach(*table);
  }
  return table;
}

c4_Storage::Impl::~Impl() {
  // Views may keep the tables alive after this.
  for (const auto& [name, table] : Tables) table->Close();
}

c4_Storage::c4_Storage(const std::string& path, Mode mode) : Inside(std::make_unique<Impl>(path, mode)) {}

c4_Storage::~c4_Storage() = default;

c4_View c4_Storage::GetAs(std::string_view description) {
  AssertDataThread();
  return c4_View(Inside->GetAs(ParseViewDescription(description)));
}

void c4_Storage::Commit() {
  AssertDataThread();
  Inside->Transaction.Commit();
}

void c4_Storage::Rollback() {
  AssertDataThread();
  Inside->Transaction.Rollback();
}

void c4_Storage::Refresh() {
  AssertDataThread();
  Inside->Transaction.Refresh();
}

void c4_Storage::Compact() {
  AssertDataThread();
  Inside->Transaction.Compact();
}

std::optional<std::int32_t> c4_Storage::ReadFirstInteger(const std::string& view,
                                                         const c4_IntProp& property) {
  AssertDataThread();
  CTableFile file(Inside->Database, view);
  try {
    file.Inspect();
    if (!file.HasColumn(property.Name())) return 0;
    CStatement rows = file.SelectAll({property});
    if (!rows.Step()) return 0;
    return rows.HoldsInteger32(1) ? std::optional(rows.GetInteger32(1)) : std::nullopt;
  } catch (const CDatabaseError& error) {
    throw CStorageException(Inside->Database.Describe("read", error), error.IsDamage());
  }
}
