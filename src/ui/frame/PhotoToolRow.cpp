#include "ui/frame/PhotoToolRow.h"

#include "base/Texts.h"
#include "ui/controls/PaintedButton.h"
#include "ui/controls/Toolbar.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"

namespace {

constexpr int kGroupGap = 10;
constexpr int kImages = 2;

struct Slot {
  int Gap;
  CommandId Id;
  PictureId Picture;
  PictureId Changed{};  // the picture while IsChanged() is true
  bool PhotoToolState::*IsChanged = nullptr;
};
constexpr Slot kSlots[] = {
    {0, CommandId::ToggleUpload, PictureId::UploadPhoto, PictureId::DoNotUploadPhoto,
     &PhotoToolState::ToUpload},
    {0, CommandId::ToggleEmail, PictureId::EmailPhoto, PictureId::DoNotEmailPhoto, &PhotoToolState::ToEmail},
    {kGroupGap, CommandId::RotateRight, PictureId::RotateRight},
    {0, CommandId::RotateLeft, PictureId::RotateLeft},
    {0, CommandId::DeletePhoto, PictureId::DeletePhoto},
    {0, CommandId::AutoFix, PictureId::AutoFix, PictureId::UndoAutoFix, &PhotoToolState::HasOriginalCopy},
    {kGroupGap, CommandId::ToggleSlideShow, PictureId::PlaySlideShow, PictureId::StopSlideShow,
     &PhotoToolState::SlideShowRuns},
    {0, CommandId::ToggleFullScreen, PictureId::ViewFullScreen, PictureId::ViewNormal,
     &PhotoToolState::FullScreen},
};

}  // namespace

void FillPhotoToolRow(CToolbar& row) {
  row.setAccessibleName(ToQString(LoadText(StringId::ToldPhotoRow)));
  for (const Slot& slot : kSlots) {
    row.AddButton(slot.Gap, slot.Id, static_cast<StringId>(slot.Picture), slot.Changed);
  }
  ShareToolTipArea(*row.GetButton(CommandId::RotateRight), *row.GetButton(CommandId::RotateLeft));
}

void UpdatePhotoToolRow(CToolbar& row, const PhotoToolState& state) {
  for (const Slot& slot : kSlots) {
    CPaintedButton& button = *row.GetButton(slot.Id);
    if (slot.IsChanged != nullptr) {
      button.SetPicture(state.*slot.IsChanged ? slot.Changed : slot.Picture, kImages, false);
    }
    button.setEnabled(state.HasPhoto);
  }
}
