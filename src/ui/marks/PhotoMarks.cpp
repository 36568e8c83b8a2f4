#include "ui/marks/PhotoMarks.h"

#include "base/Texts.h"
#include "ui/controls/RatingControl.h"

namespace {

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

std::string DescribeMarks(const CAssetRecord& photo) {
  const std::int32_t rating = photo.GetCachedRating();
  std::string text = rating > 0 ? GetStarsText(rating) : std::string();
  for (const PhotoMark& mark : kPhotoMarks) {
    if (photo.GetFlag(mark.Flag)) text += (text.empty() ? "" : ", ") + LoadText(mark.Told);
  }
  return text;
}

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
