#include "editing/ChangePhoto.h"

#include "base/Exceptions.h"
#include "base/Messages.h"
#include "catalog/AssetRecord.h"
#include "editing/SafeFiles.h"
#include "imaging/AutoFix.h"
#include "imaging/ImageFile.h"
#include "imaging/PictureMemory.h"
#include "resources/StringIds.h"

namespace {

constexpr int kQuality = 70;

/// A photo of several pictures is refused: the new file would hold one.
void FixAndSave(CImage& image, const std::string& path) {
  if (!image.RotatesWithoutLoss()) throw CException(StringId::CannotSaveEditedPhoto);
  AutoFix(image);
  image.Save(path, kQuality);
}

void Undo(const CAssetRecord& photo) {
  if (const auto error = RestoreOriginalCopy(photo)) {
    throw CException("The original of \"" + photo.GetPath() + "\" can't be brought back: " + error.message() +
                     ".");
  }
}

PhotoChange Fix(const std::string& path, CImage* shown) {
  if (shown && shown->GetCurrentSize() == shown->GetNaturalSize()) {
    FixAndSave(*shown, path);
    return PhotoChange::ShownImage;
  }
  bool isTooLarge = false;
  const auto whole = LoadImageFile(path, 0, 0, &isTooLarge);
  if (isTooLarge) throw CTooLargeException();
  if (!whole) throw CException(StringId::CannotSaveEditedPhoto);
  FixAndSave(*whole, path);
  return PhotoChange::FileAlone;
}

}  // namespace

PhotoChange RotatePhoto(const CAssetRecord& photo, CImage* image, int angle, const WorkBegins& workBegins) {
  if (!CheckPhotoWritable(photo)) return PhotoChange::None;
  if (workBegins) workBegins();
  if (!image) return PhotoChange::None;
  if (!image->RotatesWithoutLoss() && !ShowMessageId(StringId::RotationLosesInformation, true)) {
    return PhotoChange::None;
  }
  if (!ForgetThumbnail(photo)) return PhotoChange::None;
  // The file may have got another name since it was loaded.
  const bool isShown = image->GetPath() == photo.GetPath();
  const auto renamed = isShown ? nullptr : LoadImageFile(photo.GetPath(), 1, 1);
  CImage* turned = isShown ? image : renamed.get();
  if (!turned || !turned->Rotate(angle)) ShowMessageId(StringId::PhotoTooDamagedToTurn);
  return isShown ? PhotoChange::ShownImage : PhotoChange::FileAlone;
}

PhotoChange AutoFixPhoto(const CAssetRecord& photo, CImage* image, const WorkBegins& workBegins) {
  if (!CheckPhotoWritable(photo)) return PhotoChange::None;
  if (workBegins) workBegins();
  if (!ForgetThumbnail(photo)) return PhotoChange::None;
  if (HasOriginalCopy(photo)) {
    Undo(photo);
    return PhotoChange::FileAlone;
  }
  if (!MakeOriginalCopy(photo)) throw CException(StringId::CannotCopyOriginal);
  try {
    return Fix(photo.GetPath(), image);
  } catch (const CError&) {
    static_cast<void>(RestoreOriginalCopy(photo));
    throw;
  } catch (const CTooLargeException&) {
    static_cast<void>(RestoreOriginalCopy(photo));
    throw;
  } catch (...) {
    static_cast<void>(RestoreOriginalCopy(photo));
    throw CException(StringId::CannotSaveEditedPhoto);
  }
}
