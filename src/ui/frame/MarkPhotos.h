#pragma once

#include "ui/kit/Commands.h"

class CAssetRecord;
class CCatalog;
struct MainParts;

// Operations on the pages of several tabs at once, each one transaction.

/// Puts a photo on the page of a tab or takes it off; with `extendRange` others between it and the marked
/// photo next to it in the strip, too. A photo under the lens that comes onto the page is selected there.
void ToggleMarks(CCatalog& catalog, const MainParts& parts, const CAssetRecord& photo, ViewTabId tab,
                 bool extendRange);

/// Puts a photo into the trash and takes it off the other pages. Its file stays.
void TossPhoto(CCatalog& catalog, const MainParts& parts, const CAssetRecord& photo);
