#pragma once

#include "editing/PhotoChange.h"

class CAssetRecord;
class CImage;

/// Corrects a photo's file and keeps its earlier bytes in the original copy; for a photo that has one, brings
/// those back instead. `image` is the photo as it is shown, null for none: if it has all of the photo's
/// pixels, they are corrected too. Asks and tells the user what CheckPhotoWritable does.
///
/// CException "Cannot make copy of original photo." or "Can't save edited photo". The photo is as it was
/// then, without an original copy, but the pixels of `image` may have been corrected: it is to be loaded
/// again.
PhotoChange AutoFixPhoto(const CAssetRecord& photo, CImage* image, const WorkBegins& workBegins);
