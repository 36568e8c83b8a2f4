#pragma once

#include <functional>

class CAssetRecord;
class CImage;

/// The commands that change the picture in a photo's file. `image` is the photo as it is shown, null for
/// none. Both ask and tell the user what CheckPhotoWritable does.

/// The result of such a command.
enum class PhotoChange {
  None,        // nothing was done, and nothing is to be shown again
  ShownImage,  // done, or tried in vain; the image given is what the file holds
  FileAlone,   // the file has changed but not the image given, which is to be loaded again
};

/// Called once when the work begins, after CheckPhotoWritable: the moment for a wait cursor, which the caller
/// takes away at the end. May be empty.
using WorkBegins = std::function<void()>;

/// Turns a photo's file by `angle` degrees clockwise, and `image` with it. Asks before a turn that drops
/// data. A photo that is too damaged to be turned is left as it is, and the user is told. CException, with
/// the photo as it was, if it is too large, the file is gone or no new one can be made beside it;
/// CStorageException if the disk is full.
PhotoChange RotatePhoto(const CAssetRecord& photo, CImage* image, int angle, const WorkBegins& workBegins);

/// Corrects a photo's file and keeps its earlier bytes in the original copy; for a photo that has one, brings
/// those back instead. If `image` has all of the photo's pixels, they are corrected too.
///
/// CException "Cannot make copy of original photo.", "Can't save edited photo", or why the earlier bytes
/// can't be brought back; CTooLargeException. The photo, and whether it has an original copy, is as before
/// then, but the pixels of `image` may have been corrected: it is to be loaded again.
PhotoChange AutoFixPhoto(const CAssetRecord& photo, CImage* image, const WorkBegins& workBegins);
