#pragma once

#include <cstdint>
#include <span>
#include <string>

/// What is known about a photo. The numbers are stored: they are the types of stamps, and double as the
/// categories of shared texts. Number 8 existed in old catalogs; the upgrade removes its rows.
enum class StampId : std::int32_t {
  None = 0,  // as a date's source: none named
  Rating = 1,
  Note = 2,
  Person = 3,
  Thing = 4,
  Event = 5,
  Date = 6,
  FileCreateDate = 7,
  Obsolete = 8,
  CameraDate = 9,
  PersonalPlace = 10,
  UserDate = 11,
  // No stamps: the path of the photo's file gives them.
  Folder = 12,
  Title = 13,
};

/// How a stamp's value is stored in SortedString and IndexInt.
enum class StampFormat : std::int32_t {
  Invalid = -1,
  Text = 0,            // a text of this photo alone; 0
  Date = 1,            // "%Y%m%d%H%M%S" in local time; 0
  Person = 2,          // no operation writes or reads it
  SharedText = 3,      // the text in lower case; its key in String
  Number = 4,          // "%08x"; the number
  DateWithSource = 5,  // as Date; the StampId of the source, or 0
};

/// What the photos of a set are sorted and grouped by.
enum class SortKind : int {
  None = 0,  // the order in which they came in; no groups
  Month = 1,
  Folder = 2,
  Title = 3,
  Rating = 4,
  Roll = 5,
};

/// A row of StampStruct.
struct CStampType {
  std::int32_t Type = -1;
  std::string Name = "Invalid Type";
  bool Sortable = false;
  std::int32_t Style = -1;  // bit 0: rating; bit 1: has a list of choices
  StampFormat Format = StampFormat::Invalid;

  bool IsKnown() const { return Type != -1; }
  bool HasListOfChoices() const;
  friend bool operator==(const CStampType&, const CStampType&) = default;
};

/// The stamp types of every catalog, in the order of their rows.
std::span<const CStampType> GetStampTypeTable();

/// Whether the text filter looks into stamps of that type.
bool IsSearched(StampId type);

/// Whether a photo's place or group in that order depends on the fact.
bool DependsOn(SortKind order, StampId fact);
