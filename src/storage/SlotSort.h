#pragma once

#include <vector>

#include "storage/Sequence.h"

/// Below, equal to or above 0.
int CompareByKeys(const c4_Table& table, const std::vector<SortKey>& keys, c4_Slot left, c4_Slot right);

/// The slots of a sequence in the order of the keys, equal ones in the order of the sequence.
std::vector<c4_Slot> SortSlots(const c4_Sequence& sequence, const std::vector<SortKey>& keys);
