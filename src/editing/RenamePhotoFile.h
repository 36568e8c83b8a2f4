#pragma once

#include <string>
#include <system_error>

class CAssetRecord;
class CCatalog;

/// Gives a photo's file another name in its folder, and the photo's row with it; a name without an extension
/// takes the old one. No file is overwritten: std::errc::file_exists if the name is taken,
/// std::errc::invalid_argument if it is no name for a file. On an error, and on the CStorageException of a
/// catalog that can't be written, file and row are as before. A photo's original copy stays behind under the
/// old name.
std::error_code RenamePhotoFile(CAssetRecord photo, const std::string& newName);

/// Brings file and row together again after a program that was killed in the middle of a rename. To be called
/// once the catalog is open, before the first search. A disk that refuses to be written is told to the user,
/// and the next start tries again.
void FinishInterruptedRename(CCatalog& catalog);
