#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "storage/Database.h"
#include "storage/Row.h"

/// One table of the file: its columns as they stand there, and prepared statements that read and write its
/// rows. Raises CDatabaseError.
class CTableFile {
 public:
  CTableFile(CDatabase& database, std::string name);

  /// Reads which columns the file has now.
  void Inspect();
  bool Exists() const { return !Columns.empty(); }
  bool HasColumn(const std::string& name) const;
  /// Adds what is missing: the table, or columns of it.
  void Make(const std::vector<c4_Property>& properties);

  std::int64_t GetHighestRowId();
  /// All rows by number: a statement with the row's number and then the properties.
  CStatement SelectAll(const std::vector<c4_Property>& properties) const;
  c4_Bytes ReadBytes(const c4_Property& property, std::int64_t rowId);

  /// Properties not in `row` are 0 or empty.
  void Insert(std::int64_t rowId, const std::vector<c4_Property>& properties, const c4_Row& row);
  void Update(const c4_Property& property, std::int64_t rowId, const c4_Row::Value& value);
  void Delete(std::int64_t rowId);
  void DeleteAll();

  /// Drops the prepared statements, which know the columns as they were.
  void Forget();

 private:
  using Statements = std::map<std::string, CStatement, TextOrder>;

  CStatement& Prepare(Statements& statements, const c4_Property& property, const std::string& sql);

  CDatabase& Database;
  std::string Name;
  std::string QuotedName;
  std::set<std::string, TextOrder> Columns;
  CStatement InsertRow;
  CStatement DeleteRow;
  Statements Updates;
  Statements Reads;
};
