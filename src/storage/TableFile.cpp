#include "storage/TableFile.h"

namespace {

std::string Quote(std::string_view name) {
  std::string quoted = "\"";
  for (const char byte : name) quoted.append(byte == '"' ? 2 : 1, byte);
  return quoted + '"';
}

std::string MakeColumnText(const c4_Property& property) {
  switch (property.Type()) {
    case c4_Type::Integer:
      return Quote(property.Name()) + " INTEGER NOT NULL DEFAULT 0";
    case c4_Type::Text:
      return Quote(property.Name()) + " TEXT NOT NULL DEFAULT ''";
    case c4_Type::Bytes:
      break;
  }
  return Quote(property.Name()) + " BLOB NOT NULL DEFAULT x''";
}

void BindDefault(CStatement& statement, int parameter, c4_Type type) {
  switch (type) {
    case c4_Type::Integer:
      return statement.Bind(parameter, std::int64_t{0});
    case c4_Type::Text:
      return statement.Bind(parameter, std::string_view());
    case c4_Type::Bytes:
      return statement.Bind(parameter, std::span<const std::uint8_t>());
  }
}

void BindValue(CStatement& statement, int parameter, const c4_Row::Value& value) {
  if (const auto* integer = std::get_if<std::int32_t>(&value)) {
    statement.Bind(parameter, std::int64_t{*integer});
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    statement.Bind(parameter, std::string_view(*text));
  } else {
    statement.Bind(parameter, std::span<const std::uint8_t>(std::get<c4_Bytes>(value)));
  }
}

}  // namespace

CTableFile::CTableFile(CDatabase& database, std::string name)
    : Database(database), Name(std::move(name)), QuotedName(Quote(Name)) {}

void CTableFile::Inspect() {
  std::set<std::string, TextOrder> found;
  CStatement statement = Database.Prepare(
      "SELECT c.name FROM sqlite_schema AS t, pragma_table_info(t.name) AS c "
      "WHERE t.type='table' AND t.name=? COLLATE NOCASE");
  const CStatementUse use(statement);
  use->Bind(1, std::string_view(Name));
  while (use->Step()) found.emplace(use->GetText(0));
  Columns = std::move(found);
}

bool CTableFile::HasColumn(const std::string& name) const { return Columns.contains(name); }

void CTableFile::Make(const std::vector<c4_Property>& properties) {
  if (!Exists()) {
    std::string columns;
    for (const c4_Property& property : properties) {
      columns += (columns.empty() ? "" : ",") + MakeColumnText(property);
    }
    Database.Execute("CREATE TABLE " + QuotedName + "(" + columns + ")");
  } else {
    for (const c4_Property& property : properties) {
      if (HasColumn(property.Name())) continue;
      Database.Execute("ALTER TABLE " + QuotedName + " ADD COLUMN " + MakeColumnText(property));
    }
  }
  for (const c4_Property& property : properties) Columns.insert(property.Name());
  Forget();
}

std::int64_t CTableFile::GetHighestRowId() {
  return Database.QueryInteger("SELECT max(rowid) FROM " + QuotedName);
}

CStatement CTableFile::SelectAll(const std::vector<c4_Property>& properties) const {
  std::string columns = "rowid";
  for (const c4_Property& property : properties) columns += "," + Quote(property.Name());
  return Database.Prepare("SELECT " + columns + " FROM " + QuotedName + " ORDER BY rowid");
}

CStatement& CTableFile::Prepare(Statements& statements, const c4_Property& property, const std::string& sql) {
  CStatement& statement = statements[property.Name()];
  if (!statement) statement = Database.Prepare(sql);
  return statement;
}

c4_Bytes CTableFile::ReadBytes(const c4_Property& property, std::int64_t rowId) {
  if (!HasColumn(property.Name())) return {};
  CStatement& statement =
      Prepare(Reads, property, "SELECT " + Quote(property.Name()) + " FROM " + QuotedName + " WHERE rowid=?");
  const CStatementUse use(statement);
  use->Bind(1, rowId);
  if (!use->Step()) return {};
  const auto bytes = use->GetBytes(0);
  return {bytes.begin(), bytes.end()};
}

void CTableFile::Insert(std::int64_t rowId, const std::vector<c4_Property>& properties, const c4_Row& row) {
  if (!InsertRow) {
    std::string columns = "rowid";
    std::string places = "?";
    for (const c4_Property& property : properties) {
      columns += "," + Quote(property.Name());
      places += ",?";
    }
    InsertRow = Database.Prepare("INSERT INTO " + QuotedName + "(" + columns + ") VALUES(" + places + ")");
  }
  InsertRow.Bind(1, rowId);
  int parameter = 2;
  for (const c4_Property& property : properties) {
    if (const c4_Row::Value* value = row.FindValue(property)) {
      BindValue(InsertRow, parameter++, *value);
    } else {
      BindDefault(InsertRow, parameter++, property.Type());
    }
  }
  InsertRow.Run();
}

void CTableFile::Update(const c4_Property& property, std::int64_t rowId, const c4_Row::Value& value) {
  CStatement& statement = Prepare(
      Updates, property, "UPDATE " + QuotedName + " SET " + Quote(property.Name()) + "=? WHERE rowid=?");
  BindValue(statement, 1, value);
  statement.Bind(2, rowId);
  statement.Run();
}

void CTableFile::Delete(std::int64_t rowId) {
  if (!DeleteRow) DeleteRow = Database.Prepare("DELETE FROM " + QuotedName + " WHERE rowid=?");
  DeleteRow.Bind(1, rowId);
  DeleteRow.Run();
}

void CTableFile::DeleteAll() { Database.Execute("DELETE FROM " + QuotedName); }

void CTableFile::Forget() {
  InsertRow = {};
  DeleteRow = {};
  Updates.clear();
  Reads.clear();
}
