#include "ui/strip/GroupLabel.h"

#include "base/Texts.h"
#include "sets/PhotoSet.h"

namespace {

std::string GetRatingLabel(std::int32_t rating) {
  if (rating <= 0) return LoadText(StringId::NotRated);
  return rating == 1 ? LoadText(StringId::OneStar) : FormatString(StringId::Stars, rating);
}

std::string GetRollText(const CPhotoSet& set, int index, std::int32_t roll) {
  const int start = set.IsGroupStart(index) ? index : set.GetPreviousGroupStart(index);
  int end = index + 1;
  if (!set.IsGroupEnd(index)) {
    // In the last group this is the group's last photo, else the first behind it.
    const int next = set.GetNextGroupStart(index);
    end = set.IsGroupStart(next) ? next : next + 1;
  }
  return FormatString(StringId::RollLabel, roll + 1, index - start + 1, end - start);
}

}  // namespace

std::string GetGroupLabel(const CPhotoSet& set, int index, const FolderLabel& folderLabel) {
  const CAssetRecord record = set.GetAsset(index);
  if (!record.IsValid()) return {};
  switch (set.GetSortKind()) {
    case SortKind::None:
      return {};
    case SortKind::Month:
      return FormatDate(record.GetCachedDate(), false);
    case SortKind::Folder:
      return folderLabel(record.GetFolder());
    case SortKind::Title:
      return record.GetTitle();
    case SortKind::Rating:
      return GetRatingLabel(record.GetCachedRating());
    case SortKind::Roll:
      return GetRollText(set, index, record.GetRollID());
  }
  return {};
}
