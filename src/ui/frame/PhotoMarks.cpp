#include "ui/frame/PhotoMarks.h"

#include <optional>
#include <vector>

#include "catalog/Catalog.h"
#include "sets/PhotoSet.h"
#include "ui/frame/MainParts.h"
#include "ui/kit/WaitCursor.h"
#include "ui/pages/PhotoView.h"
#include "ui/strip/StripWindow.h"

namespace {

constexpr int kLongRange = 10;  // marking more photos than this takes noticeable time

struct TabFlag {
  ViewTabId Tab;
  PhotoFlag Flag;
  int StripIcon;
};
constexpr TabFlag kTabFlags[] = {{ViewTabId::Upload, PhotoFlag::ToRemotePrint, 0},
                                 {ViewTabId::Email, PhotoFlag::ToEmail, 1}};

const TabFlag& GetTabFlag(ViewTabId tab) { return tab == ViewTabId::Email ? kTabFlags[1] : kTabFlags[0]; }

/// Returns the new state.
bool ToggleFlag(CAssetRecord photo, PhotoFlag flag) {
  const bool on = !photo.GetFlag(flag);
  photo.SetFlag(flag, on);
  return on;
}

/// Looks from `start` to the last position before `end`, either way; -1 if none is marked.
int FindMarked(int start, int end, bool nearest, const std::function<bool(int)>& isMarked) {
  const int step = start < end ? 1 : -1;
  int found = -1;
  for (int i = start; i != end; i += step) {
    if (!isMarked(i)) continue;
    found = i;
    if (nearest) break;
  }
  return found;
}

}  // namespace

std::pair<int, int> FindRangeToToggle(int position, int count, bool nowOn,
                                      const std::function<bool(int)>& isMarked) {
  if (position < 0 || position >= count) return {0, 0};
  if (const int before = FindMarked(position - 1, -1, nowOn, isMarked); before >= 0) {
    return {before + 1, position};
  }
  if (const int behind = FindMarked(position + 1, count, nowOn, isMarked); behind >= 0) {
    return {position + 1, behind};
  }
  return {position, position};
}

void ToggleMarks(CCatalog& catalog, const MainParts& parts, const CAssetRecord& photo, ViewTabId tab,
                 bool extendRange) {
  CPhotoSet& set = *parts.PhotoSet;
  const TabFlag& mark = GetTabFlag(tab);
  std::vector<int> changed{set.IndexOf(photo.GetAssetID())};
  std::optional<CWaitCursor> waiting;
  CAutoCommitPause oneChange(catalog);
  const bool on = ToggleFlag(photo, mark.Flag);
  if (extendRange) {
    const auto [first, end] = FindRangeToToggle(changed.front(), set.GetCount(), on, [&](int index) {
      return set.GetAsset(index).GetFlag(mark.Flag);
    });
    if (end - first > kLongRange) waiting.emplace();
    for (int index = first; index < end; ++index) {
      ToggleFlag(set.GetAsset(index), mark.Flag);
      changed.push_back(index);
    }
  }
  oneChange.Commit();
  for (const int index : changed) parts.StripWindow->GetStrip().RedrawBand(index, mark.StripIcon);
  parts.PhotoView->UpdateFlags();
}

void TossPhoto(CCatalog& catalog, CAssetRecord photo) {
  CAutoCommitPause oneChange(catalog);
  photo.SetFlag(PhotoFlag::Tossed, true);
  for (const TabFlag& mark : kTabFlags) photo.SetFlag(mark.Flag, false);
  oneChange.Commit();
}
