#pragma once

#include <string>
#include <system_error>

class CAssetRecord;

/// What makes it safe to change the user's files: whether a photo may be changed, and copies of what a file
/// held before.

/// Whether the owner's write bit of the photo's file is clear, or the file can't be written. False if that
/// isn't known.
bool IsReadOnly(const CAssetRecord& photo);

/// Whether the photo's file may be changed now. Asks the user about a read-only file, which stays writable
/// if the user agrees and stays as it was if not; tells of a file that can't be read or made writable.
bool CheckPhotoWritable(const CAssetRecord& photo);

/// To be called right before a photo's file changes. Removes and commits the stored thumbnail: if the program
/// ends before a new one is stored, the next search makes one of the photo as it is then. False, after the
/// user was told why, if that fails; the photo must then stay as it is.
bool ForgetThumbnail(const CAssetRecord& photo);

/// The original copy keeps a photo's earlier bytes while it is corrected and afterwards. Its existence is the
/// only record that a photo has been corrected. Only a regular file is one: a folder, a link or anything else
/// of that name is neither a copy nor ever replaced.

/// The photo's path with ".orig" behind it.
std::string OriginalCopyPath(const CAssetRecord& photo);
std::string OriginalCopyPath(const std::string& path);

bool HasOriginalCopy(const CAssetRecord& photo);

/// Copies the photo, with its times, mode and attributes. The copy appears whole and flushed; one that is
/// there already is left alone. False if there is none afterwards.
bool MakeOriginalCopy(const CAssetRecord& photo);

/// Puts the copy in the photo's place, in one step. On an error nothing has changed.
std::error_code RestoreOriginalCopy(const CAssetRecord& photo);

/// Keeps a copy of a storage's file as "<path>.old[n]" under the first free number from 1 up. The copy is
/// whole, and flushed, when it appears. A copy that can't be made is not reported; a missing file makes none.
void BackupFile(const std::string& path);
