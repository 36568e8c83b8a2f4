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
  if (image->GetPath() == photo.GetPath()) {
    image->Rotate(angle);
    return PhotoChange::ShownImage;
  }
  // The file has got another name since it was loaded.
  if (const auto renamed = LoadImageFile(photo.GetPath(), 1, 1)) renamed->Rotate(angle);
  return PhotoChange::FileAlone;
}
