#pragma once

#include <functional>
#include <utility>

/// The positions strictly between a photo whose mark was just set or taken away and the marked photo that the
/// change extends to: first to end - 1; empty if there is nothing to extend to. The marked photo is looked
/// for before `position`, and only if there is none, behind it: the nearest one after a mark was set, the
/// farthest one after a mark was taken away.
std::pair<int, int> FindRangeToToggle(int position, int count, bool nowOn,
                                      const std::function<bool(int)>& isMarked);
