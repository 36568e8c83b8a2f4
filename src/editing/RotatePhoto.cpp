#include "editing/RotatePhoto.h"

#include "base/Messages.h"
#include "catalog/AssetRecord.h"
#include "editing/PhotoAccess.h"
#include "imaging/ImageFile.h"

PhotoChange RotatePhoto(const CAssetRecord& photo, CImage* image, int angle, const WorkBegins& workBegins) {
  if (!CheckPhotoWritable(photo)) return PhotoChange::None;
  if (workBegins) workBegins();
  if (!image) return PhotoChange::None;
  if (!image->RotatesWithoutLoss() && !ShowMessageId(StringId::RotationLosesInformation, true))
    return PhotoChange::None;
  if (!ForgetThumbnail(photo)) return PhotoChange::None;
  // The file may have got another name since it was loaded.
  const bool isShown = image->GetPath() == photo.GetPath();
  const auto renamed = isShown ? nullptr : LoadImageFile(photo.GetPath(), 1, 1);
  CImage* turned = isShown ? image : renamed.get();
  if (!turned || !turned->Rotate(angle)) ShowMessageId(StringId::PhotoTooDamagedToTurn);
  return isShown ? PhotoChange::ShownImage : PhotoChange::FileAlone;
}
