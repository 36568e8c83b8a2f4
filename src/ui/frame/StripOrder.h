#pragma once

#include <cstdint>

class CFilmstrip;
class CPhotoSet;

/// The orders that the strip can be put into. The numbers are those of the order's control; they are what
/// the setting "Sort" holds between sessions.
enum class SortControl : int { Rating = 221, Month = 226, Folder = 232, Title = 233, Roll = 234 };

/// The order of a new session, before the set is first rebuilt.
void SetFirstSort(CPhotoSet& set, std::int32_t currentRoll);

/// Applies the order that the settings hold, if they hold one.
void ApplyStoredSort(CFilmstrip& strip, CPhotoSet& set, std::int32_t currentRoll);

/// Sorts the set and shows it from its first photo, or its last one for months. Becomes the stored order.
void SelectSort(SortControl control, CFilmstrip& strip, CPhotoSet& set, std::int32_t currentRoll);

/// Sorts by roll, without filters of text and rating, and goes to the first photo of the last roll.
void ShowNewestRoll(CFilmstrip& strip, CPhotoSet& set, std::int32_t currentRoll);
