#include "ui/frame/PhotoToolRow.h"

#include "ui/frame/CommandTable.h"
#include "ui/kit/PaintedButton.h"
#include "ui/kit/ToolTips.h"
#include "ui/kit/Toolbar.h"

namespace {

constexpr int kGroupGap = 10;
constexpr int kImages = 2;

struct Slot {
  int Gap;
  CommandId Id;
};
constexpr Slot kSlots[] = {
    {0, CommandId::ToggleUpload},
    {0, CommandId::ToggleEmail},
    {kGroupGap, CommandId::RotateRight},
    {0, CommandId::RotateLeft},
    {0, CommandId::DeletePhoto},
    {0, CommandId::AutoFix},
    {kGroupGap, CommandId::ToggleSlideShow},
    {0, CommandId::ToggleFullScreen},
};

}  // namespace

void FillPhotoToolRow(CToolbar& row) {
  row.setAccessibleName(QStringLiteral("What to do with the photo"));
  for (const Slot& slot : kSlots) row.AddButton(slot.Gap, slot.Id, FindCommand(slot.Id)->Caption);
  ShareToolTipArea(*row.GetButton(CommandId::RotateRight), *row.GetButton(CommandId::RotateLeft));
}

void UpdatePhotoToolRow(CToolbar& row, const PhotoToolState& state) {
  const auto setPicture = [&row](CommandId id, bool changed, PictureId changedPicture, PictureId picture) {
    row.GetButton(id)->SetPicture(changed ? changedPicture : picture, kImages, true);
  };
  setPicture(CommandId::AutoFix, state.HasOriginalCopy, PictureId::UndoAutoFix, PictureId::AutoFix);
  setPicture(CommandId::ToggleEmail, state.ToEmail, PictureId::DoNotEmailPhoto, PictureId::EmailPhoto);
  setPicture(CommandId::ToggleUpload, state.ToUpload, PictureId::DoNotUploadPhoto, PictureId::UploadPhoto);
  setPicture(CommandId::ToggleSlideShow, state.SlideShowRuns, PictureId::StopSlideShow,
             PictureId::PlaySlideShow);
  setPicture(CommandId::ToggleFullScreen, state.FullScreen, PictureId::ViewNormal, PictureId::ViewFullScreen);
  for (const Slot& slot : kSlots) row.GetButton(slot.Id)->setEnabled(state.HasPhoto);
  row.LayOut();
}
