#pragma once

#include "storage/Row.h"

class CCatalog;

/// A reference to one row of the catalog, by identity: rows that come and go around it don't shift it. Base
/// of the records; a small value, copied freely. It becomes invalid when its row is removed.
class CRecord {
 public:
  CRecord() = default;
  CRecord(CCatalog* owner, c4_RowRef row) : Owner(owner), Row(std::move(row)) {}
  virtual ~CRecord() = default;
  CRecord(const CRecord&) = default;
  CRecord& operator=(const CRecord&) = default;

  virtual bool IsValid() const { return Owner != nullptr && Row.IsValid(); }
  const c4_RowRef& GetRow() const { return Row; }

 protected:
  CCatalog* Owner = nullptr;
  c4_RowRef Row;
};

/// A row of People.
class CPersonRecord : public CRecord {
 public:
  using CRecord::CRecord;
};
