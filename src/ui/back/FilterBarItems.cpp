#include "ui/back/FilterBarItems.h"

#include "base/Texts.h"
#include "sets/PhotoFilter.h"
#include "ui/controls/DropControl.h"

namespace {

constexpr int kShownFolders = 5;  // of the user's list

constexpr DropItemFlags kPlain = DropItemFlags::None;
constexpr DropItemFlags kInItalics = DropItemFlags::SecondFont;
constexpr DropItemFlags kLastOfGroup = DropItemFlags::LineBelow;
constexpr DropItemFlags kAction = DropItemFlags::Action | DropItemFlags::SecondFont;

struct SortItem {
  SortId Id;
  StringId Text;
  SortOrder Order;
};

// The position is that of the item's image.
constexpr SortItem kSortItems[] = {
    {SortId::Month, StringId::SortByMonth, {SortKind::Month, false}},
    {SortId::Rating, StringId::SortByRating, {SortKind::Rating, true}},
    {SortId::Folder, StringId::SortByFolder, {SortKind::Folder, false}},
    {SortId::Title, StringId::SortByTitle, {SortKind::Title, false}},
    {SortId::Roll, StringId::SortByRoll, {SortKind::Roll, false}},
};

constexpr DropImages kFolderImages{PictureId::FolderItems, 6};
constexpr DropImages kRatingImages{.Picture = PictureId::RatingItems,
                                   .Count = 2,
                                   .PictureOnYellow = PictureId::RatingItemsOnYellow,
                                   .AreStars = true};
constexpr DropImages kSortImages{PictureId::SortItems, 6, {}, 2, 6};
constexpr const char* kActiveDiskImage = "\x02 ";

struct RatingItem {
  RatingFilterCode Code;
  DropItemFlags Flags;
};
constexpr RatingItem kRatingItems[] = {
    {RatingFilterCode::Any, kInItalics | kLastOfGroup}, {RatingFilterCode::FourStars, kPlain},
    {RatingFilterCode::ThreeOrBetter, kPlain},          {RatingFilterCode::TwoOrBetter, kPlain},
    {RatingFilterCode::OneOrBetter, kLastOfGroup},      {RatingFilterCode::NoRating, kPlain},
};

}  // namespace

std::optional<SortOrder> GetSortOrder(SortId id) {
  for (const SortItem& item : kSortItems) {
    if (item.Id == id) return item.Order;
  }
  return std::nullopt;
}

void FillFolderControl(CDropControl& control, CDropHistory& folders, bool activeDisk) {
  CDropControlModel& model = control.GetModel();
  const auto add = [&model](FolderItem item, const std::string& text, DropItemFlags flags) {
    model.AddItem(static_cast<int>(item), text, flags);
  };
  control.SetImages(kFolderImages);
  add(FolderItem::SearchAgain, LoadExpandedString(StringId::SearchPhotosAgain), kAction | kLastOfGroup);
  add(FolderItem::AllFolders, LoadExpandedString(StringId::AllPhotoFolders), kInItalics);
  add(FolderItem::MyPictures, LoadExpandedString(StringId::MyPicturesItem), kPlain);
  if (activeDisk) {
    add(FolderItem::ActiveDisk, kActiveDiskImage + LoadExpandedString(StringId::ActiveDiskPhotos), kPlain);
  }
  model.AddHistory(static_cast<int>(FolderItem::FirstListed), folders, kPlain, LoadText(StringId::FolderItem),
                   kShownFolders);
  add(FolderItem::MoreFolders, LoadExpandedString(StringId::MoreFolders), kAction | kLastOfGroup);
  add(FolderItem::AddFolder, LoadExpandedString(StringId::AddFolderToList), kAction);
  add(FolderItem::RemoveFolder, LoadExpandedString(StringId::RemoveFolderFromList), kAction);
  model.SelectId(static_cast<int>(FolderItem::MyPictures));
  control.Refresh();
}

void FillFindControl(CDropControl& control, CDropHistory& texts) {
  control.SetPrompt(LoadExpandedString(StringId::FindPrompt));
  control.GetModel().AddItem(static_cast<int>(FindItem::Anything), {}, kLastOfGroup);
  control.GetModel().AddHistory(static_cast<int>(FindItem::FirstHistory), texts, kPlain);
  control.GetModel().SelectId(static_cast<int>(FindItem::Anything));
  control.Refresh();
}

void FillRatingControl(CDropControl& control) {
  control.SetImages(kRatingImages);
  for (const RatingItem& item : kRatingItems) {
    control.GetModel().AddItem(static_cast<int>(item.Code), GetRatingFilterText(item.Code), item.Flags);
  }
  control.GetModel().SelectId(static_cast<int>(RatingFilterCode::Any));
  control.Refresh();
}

void FillSortControl(CDropControl& control) {
  control.SetImages(kSortImages);
  char image = 1;
  for (const SortItem& item : kSortItems) {
    control.GetModel().AddItem(static_cast<int>(item.Id),
                               std::string{image++, ' '} + LoadExpandedString(item.Text), kPlain);
  }
}
