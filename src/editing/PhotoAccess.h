#pragma once

class CAssetRecord;

/// Whether the owner's write bit of the photo's file is clear, or the file can't be written. False if that
/// can't be told.
bool IsReadOnly(const CAssetRecord& photo);

/// Whether the photo's file may be changed now. Asks the user about a read-only file, which stays writable
/// if the user agrees and stays as it was if not; tells of a file that can't be read or made writable.
bool CheckPhotoWritable(const CAssetRecord& photo);

/// To be called right before a photo's file changes: forgets the stored thumbnail for good, so that whatever
/// stops the program before a new one is stored, the next search makes one of the photo as it is then. False,
/// with the user told why, if the old one can't be forgotten: the photo must stay as it is.
bool ForgetThumbnail(const CAssetRecord& photo);
