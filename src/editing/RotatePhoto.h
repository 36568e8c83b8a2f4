#pragma once

#include "editing/PhotoChange.h"

class CAssetRecord;
class CImage;

/// Turns a photo's file by `angle` degrees clockwise, and `image`, the photo as it is shown (null for none),
/// with it. Asks and tells the user what CheckPhotoWritable does, and asks before a turn that drops data.
/// A photo that is too damaged to be turned is left as it is, and the user is told. CException, with the
/// photo as it was, if it is too large, the file is gone or no new one can be made beside it;
/// CStorageException if the disk is full.
PhotoChange RotatePhoto(const CAssetRecord& photo, CImage* image, int angle, const WorkBegins& workBegins);
