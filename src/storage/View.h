#pragma once

#include <memory>
#include <vector>

#include "storage/Row.h"

class c4_Sequence;
class c4_Table;

using c4_Properties = std::vector<c4_Property>;

/// An ordered list of rows: a stored view, or one derived from another by selection or sorting. A view
/// is a handle; copies are the same view. Derived views are live: they follow every change of their
/// base at once. Equal rows of a sorted view stand in the order of its base.
///
/// Thread: the one that owns the data (see DataThread.h). Writing raises CStorageException when the
/// disk refuses; all uncommitted changes of the storage are then undone, in every view.
class c4_View {
 public:
  /// An empty view without properties; it takes no rows.
  c4_View();

  int GetSize() const;
  bool IsEmpty() const { return GetSize() == 0; }

  /// `index` is 0 to GetSize() - 1; any other gives an invalid row.
  c4_RowRef GetAt(int index) const;
  c4_RowRef operator[](int index) const { return GetAt(index); }

  /// The value at a position, 0 or empty where there is none. For loops over many rows: makes no row
  /// reference.
  std::int32_t GetIntegerAt(const c4_IntProp& property, int index) const;
  /// Valid until the next change of the storage.
  std::string_view GetTextAt(const c4_StringProp& property, int index) const;

  /// The position of a row in this view, through any depth of derived views; -1 if it isn't in it.
  int GetIndexOf(const c4_RowRef& row) const;

  /// Adds a row to the stored view beneath, behind its last row. Properties not in `row` are 0 or empty;
  /// those that the view doesn't have are passed over. Returns the new row.
  c4_RowRef Add(const c4_Row& row);

  /// Removes rows from the stored view beneath. Positions out of range are passed over.
  void RemoveAt(int index, int count = 1);

  /// Drops rows from the end, or adds rows of 0 and empty values.
  void SetSize(int size);

  /// Adds a property to the stored view beneath; one that it has already is left as it is.
  void AddProperty(const c4_Property& property);

  /// The first position, from `start` on, of a row with these values, or -1.
  int Find(const c4_Row& values, int start = 0) const;

  /// In a sorted view, the first position whose row isn't below `values` in the order of the view's sort
  /// properties, by binary search; GetSize() if all rows are below. `values` holds the first one or more
  /// of the sort properties. Not equal to Find: the row there may be another one.
  int Search(const c4_Row& values) const;

  /// The rows with these values, in this view's order.
  c4_View Select(const c4_Row& values) const;

  /// The rows in ascending order of the properties, the first deciding first.
  c4_View SortOn(const c4_Properties& properties) const;

  /// As SortOn, but from high to low in those of the properties that `descending` names too.
  c4_View SortOnReverse(const c4_Properties& properties, const c4_Properties& descending) const;

 private:
  friend class c4_Storage;
  explicit c4_View(std::shared_ptr<c4_Table> table);
  c4_View(std::shared_ptr<c4_Table> table, std::shared_ptr<c4_Sequence> sequence);

  /// `index` must be in range.
  RowIdentity GetIdentity(int index) const;

  // Null for the empty view.
  std::shared_ptr<c4_Table> Table;
  std::shared_ptr<c4_Sequence> Sequence;  // of rows of the table
};
