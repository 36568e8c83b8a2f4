#pragma once

#include <functional>
#include <utility>

#include "ui/kit/Commands.h"

class CAssetRecord;
class CCatalog;
struct MainParts;

// The marks that put photos on the pages of the tabs, and into the trash. Each operation is one transaction.

/// Puts a photo on the page of a tab or takes it off; with `extendRange` others between it and the marked
/// photo next to it, too. All that shows the marks is painted anew.
void ToggleMarks(CCatalog& catalog, const MainParts& parts, const CAssetRecord& photo, ViewTabId tab,
                 bool extendRange);

/// Puts a photo into the trash and takes it off the other pages. Its file stays.
void TossPhoto(CCatalog& catalog, CAssetRecord photo);

/// The positions strictly between a photo whose mark was just set or taken away and the marked photo that the
/// change extends to: first to end - 1; empty if there is nothing to extend to. The marked photo is looked
/// for before `position`, and only if there is none, behind it: the nearest one after a mark was set, the
/// farthest one after a mark was taken away.
std::pair<int, int> FindRangeToToggle(int position, int count, bool nowOn,
                                      const std::function<bool(int)>& isMarked);
