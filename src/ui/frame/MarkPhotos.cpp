#include "ui/frame/MarkPhotos.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

#include "base/Exceptions.h"
#include "catalog/Catalog.h"
#include "sets/PhotoSet.h"
#include "ui/frame/MainParts.h"
#include "ui/kit/WaitCursor.h"
#include "ui/marks/PhotoMarks.h"
#include "ui/pages/PhotoTab.h"
#include "ui/strip/StripWindow.h"

namespace {

constexpr int kLongRange = 10;  // marking more photos than this takes noticeable time

/// Makes the change in one transaction; then the pages show what the catalog says, also if that failed.
void ChangeFlags(CCatalog& catalog, const std::vector<CPhotoTab*>& tabs,
                 const std::vector<std::int32_t>& photos, const std::function<void()>& change) {
  const auto follow = [&] {
    for (CPhotoTab* tab : tabs) tab->FollowFlags(photos);
  };
  try {
    CAutoCommitPause oneChange(catalog);
    change();
    oneChange.Commit();
  } catch (const CStorageException&) {
    follow();
    throw;
  }
  follow();
}

}  // namespace

void ToggleMarks(CCatalog& catalog, const MainParts& parts, const CAssetRecord& photo, ViewTabId tab,
                 bool extendRange) {
  CPhotoTab& page = *parts.GetPhotoTab(tab);
  const PhotoFlag flag = page.GetFlag();
  const bool nowOn = !photo.GetFlag(flag);
  std::vector<std::int32_t> changed{photo.GetAssetID()};
  std::optional<CWaitCursor> waiting;
  if (extendRange) {
    const CPhotoSet& set = *parts.PhotoSet;
    const auto [first, end] = FindRangeToToggle(set.IndexOf(photo.GetAssetID()), set.GetCount(), nowOn,
                                                [&](int index) { return set.GetAsset(index).GetFlag(flag); });
    if (end - first > kLongRange) waiting.emplace();
    for (int index = first; index < end; ++index) changed.push_back(set.GetAssetId(index));
  }
  ChangeFlags(catalog, {&page}, changed, [&] {
    for (const std::int32_t assetId : changed) {
      CAssetRecord toggled = catalog.FindAssetById(assetId);
      toggled.SetFlag(flag, !toggled.GetFlag(flag));
    }
  });
  const CAssetRecord* current = parts.StripWindow->GetStrip().GetCurrentRecord();
  if (current == nullptr || !current->GetFlag(flag)) return;
  const std::int32_t currentId = current->GetAssetID();
  if (std::ranges::find(changed, currentId) != changed.end()) page.SelectPhoto(currentId);
}

void TossPhoto(CCatalog& catalog, const MainParts& parts, const CAssetRecord& photo) {
  std::vector<CPhotoTab*> tabs;
  for (const auto& tab : parts.PhotoTabs) tabs.push_back(tab.get());
  ChangeFlags(catalog, tabs, {photo.GetAssetID()}, [&] {
    CAssetRecord tossed = photo;
    tossed.SetFlag(PhotoFlag::Tossed, true);
    for (const PhotoMark& mark : kPhotoMarks) tossed.SetFlag(mark.Flag, false);
  });
}
