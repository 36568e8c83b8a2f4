#pragma once

#include "editing/PhotoChange.h"

class CAssetRecord;
class CImage;

/// Corrects a photo's file and keeps its earlier bytes in the original copy; for a photo that has one, brings
/// those back instead. `image` is the photo as it is shown, null for none: if it has all of the photo's
/// pixels, they are corrected too. Asks and tells the user what CheckPhotoWritable does.
///
/// CException "Cannot make copy of original photo.", "Can't save edited photo", or why the earlier bytes
/// can't be brought back; CTooLargeException. The photo, and whether it has an original copy, is as before
/// then, but the pixels of `image` may have been corrected: it is to be loaded again.
PhotoChange AutoFixPhoto(const CAssetRecord& photo, CImage* image, const WorkBegins& workBegins);
