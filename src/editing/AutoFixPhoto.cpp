#include "editing/AutoFixPhoto.h"

#include "base/Exceptions.h"
#include "catalog/AssetRecord.h"
#include "editing/OriginalCopy.h"
#include "editing/PhotoAccess.h"
#include "imaging/AutoFix.h"
#include "imaging/Image.h"
#include "imaging/ImageFile.h"
#include "imaging/PictureMemory.h"
#include "resources/StringIds.h"

namespace {

constexpr int kQuality = 70;

/// The new file takes the photo's name in one step, so the name is never empty. It holds one picture, so a
/// photo with more isn't saved.
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
