#pragma once

#include <vector>

#include "storage/View.h"

/// Whether all titles are ASCII, which the storage sorts as people do.
bool AreAsciiTitles(const c4_View& photos);

/// The rows of a view that the storage has sorted by title and date, in the order in which people look for
/// titles. All titles of one first letter stand together.
std::vector<int> OrderByLetters(const c4_View& sortedByTitle, bool descending);
