#pragma once

/// What the photos of a set are sorted and grouped by.
enum class SortKind : int {
  None = 0,  // the order in which they came in; no groups
  Month = 1,
  Folder = 2,
  Title = 3,
  Rating = 4,
  Roll = 5,
};
