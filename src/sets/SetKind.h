#pragma once

/// The kinds of query sets. The numbers are the ids of their names in the string table.
enum class SetKind : int {
  Invalid = 5023,
  Available = 5025,    // in place and not in the trash
  All = 5026,          // every row
  ToEmail = 5032,
  Deleted = 5034,      // in the trash, missing or not
  ToRemotePrint = 5036,
};
