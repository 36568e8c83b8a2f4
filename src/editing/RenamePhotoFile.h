#pragma once

#include <string>
#include <system_error>

class CAssetRecord;
class CCatalog;

/// Whether the photo's file can have that name in its folder: the one that it has, also in another case on a
/// disk that ignores case, or one under which nothing stands. The name of an original copy that stands there
/// is taken too: it belongs to another photo, or to an earlier state of this one. A link takes a name even if
/// it leads nowhere.
bool IsNameFree(const CAssetRecord& photo, const std::string& name);

/// The first free name of "title.jpg", "title-2.jpg", "title-3.jpg" and so on. A title is cut so that the
/// name of an original copy fits as well.
std::string FindFreeName(const CAssetRecord& photo, const std::string& title, const std::string& extension);

/// Gives a photo's file another name in its folder, and the photo's row with it; a name without an extension
/// takes the old one. Nothing is overwritten: std::errc::file_exists if the name isn't free,
/// std::errc::invalid_argument if it is no name for a file. On an error, and on the CStorageException of a
/// catalog that can't be written, file and row agree on the old name, as soon as the disk lets them. A
/// photo's original copy stays behind under the old name.
std::error_code RenamePhotoFile(CAssetRecord photo, const std::string& newName);

/// Brings file and row together again after a program that was killed in the middle of a rename. To be called
/// once the catalog is open, before the first search. A disk that refuses to be written is told to the user,
/// and the next start tries again.
void FinishInterruptedRename(CCatalog& catalog);
