#pragma once

/// The kinds of query sets. The numbers are the ids of their names in the string table, where they have one.
enum class SetKind : int {
  Invalid = 5023,        // holds nothing
  Available = 5025,      // in place and not in the trash
  All = 5026,            // every row
  ToEmail = 5032,        // in place and marked for the email tab
  Deleted = 5034,        // in the trash, missing or not
  ToRemotePrint = 5036,  // in place and marked for the print and upload tab
};
