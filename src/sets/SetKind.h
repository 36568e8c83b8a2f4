#pragma once

/// The kinds of query sets. The numbers are the ids of their names in the string table.
enum class SetKind : int {
  Invalid = 5023,    // holds nothing
  Available = 5025,  // in place and not in the trash
  All = 5026,        // every row
};
