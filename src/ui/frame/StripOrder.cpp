#include "ui/frame/StripOrder.h"

#include "base/Settings.h"
#include "sets/PhotoSet.h"
#include "ui/strip/Filmstrip.h"

namespace {

constexpr const char* kSortSetting = "Sort";

struct SortOrder {
  SortControl Control;
  SortKind Kind;
  bool Descending;
};
constexpr SortOrder kOrders[] = {
    {SortControl::Month, SortKind::Month, false},   {SortControl::Rating, SortKind::Rating, true},
    {SortControl::Folder, SortKind::Folder, false}, {SortControl::Title, SortKind::Title, false},
    {SortControl::Roll, SortKind::Roll, false},
};

void StoreSort(SortControl control) {
  CSettingsRef().SetInt(kSortSetting, static_cast<std::int32_t>(control));
}

}  // namespace

void SetFirstSort(CPhotoSet& set, std::int32_t currentRoll) {
  set.SetSort(currentRoll == 0 ? SortKind::Month : SortKind::Roll, false);
}

void ApplyStoredSort(CFilmstrip& strip, CPhotoSet& set, std::int32_t currentRoll) {
  const CSettingsRef settings;
  if (!settings.HasValue(kSortSetting)) return;
  SelectSort(static_cast<SortControl>(settings.GetInt(kSortSetting)), strip, set, currentRoll);
}

void SelectSort(SortControl control, CFilmstrip& strip, CPhotoSet& set, std::int32_t currentRoll) {
  if (control == SortControl::Roll) return ShowNewestRoll(strip, set, currentRoll);
  for (const SortOrder& order : kOrders) {
    if (order.Control != control) continue;
    StoreSort(control);
    set.SetSort(order.Kind, order.Descending);
    set.Rebuild();
    set.SetGuest(-1);
    strip.Refresh(CFilmstrip::kStartOfSet);
  }
}

void ShowNewestRoll(CFilmstrip& strip, CPhotoSet& set, std::int32_t currentRoll) {
  StoreSort(SortControl::Roll);
  set.ClearTextFilter();
  set.ClearRatingFilter();
  set.SetSort(SortKind::Roll, false);
  set.Rebuild();
  strip.Refresh(CFilmstrip::kKeepPhoto);
  int first = set.GetCount() - 1;
  if (currentRoll > 0 && !set.IsGroupStart(first)) first = set.GetPreviousGroupStart(first);
  strip.MoveTo(first);
}
