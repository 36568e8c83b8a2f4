#pragma once

/// What a field of the photo back shows. The commands that go to a field add 220; the fields of one stamp
/// have the number of its type.
enum class FieldNumber : int {
  None = 0,
  Rating = 1,
  Caption = 2,
  Subjects = 4,
  Event = 5,
  Date = 6,
  Place = 10,
  Folder = 12,
  Title = 13,
};
