#pragma once

#include <functional>
#include <string>
#include <utility>

#include "catalog/AssetRecord.h"
#include "resources/PictureIds.h"
#include "resources/StringIds.h"
#include "ui/kit/Commands.h"

/// What a user can mark a photo for: each mark is a flag of the photo, puts it on the page of a tab, and
/// shows in the strip and on the large photo.
struct PhotoMark {
  PhotoFlag Flag;
  ViewTabId Tab;
  CommandId Toggle;
  PictureId StripPicture;  // off, on, off under the pointer, on under the pointer
  PictureId PhotoPicture;
  StringId Told;  // by assistive tools
};

/// In the order in which they stand, from left to right.
inline constexpr PhotoMark kPhotoMarks[] = {
    {PhotoFlag::ToRemotePrint, ViewTabId::Upload, CommandId::ToggleUpload, PictureId::UploadStripMarks,
     PictureId::UploadMark, StringId::ToldMarkedForUpload},
    {PhotoFlag::ToEmail, ViewTabId::Email, CommandId::ToggleEmail, PictureId::EmailStripMarks,
     PictureId::EmailMark, StringId::ToldMarkedForEmail},
};

/// The photo's stars and marks in words: "3 stars, marked for email"; empty if it has none.
std::string DescribeMarks(const CAssetRecord& photo);

/// The positions strictly between a photo whose mark was just set or taken away and the marked photo that the
/// change extends to: first to end - 1; empty if there is nothing to extend to. The marked photo is looked
/// for before `position`, and only if there is none, behind it: the nearest one after a mark was set, the
/// farthest one after a mark was taken away.
std::pair<int, int> FindRangeToToggle(int position, int count, bool nowOn,
                                      const std::function<bool(int)>& isMarked);
