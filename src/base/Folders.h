#pragma once

#include <string>

/// Where the program and the photos are. Folders end with "/" where it is said.

/// True for a file, and with `allowFolder` for a folder too. A missing file or path is false; any other
/// failure to look is true, for what can't be seen may well stand.
bool FileExists(const std::string& path, bool allowFolder);

/// The folder of the executable, with its closing "/".
std::string GetProgramFolder();

/// The folder of the user's photos, without closing "/", asked for once. Where the system knows no
/// pictures folder, one is made in the documents folder and the user is told. CError if that has no place.
std::string GetMyPicturesFolder();

/// Drops the answer that GetMyPicturesFolder keeps. For tests that change the home folder.
void ForgetMyPicturesFolder();

/// The folder of the photos on a removable disk: beside the program's folder, without closing "/".
std::string GetActiveDiskPhotoFolder();

/// The folder of catalog and thumbnails in normal mode, without closing "/". Not made by asking. CError if
/// the user has no home.
std::string GetApplicationDataFolder();

/// True if a file can be made in the folder. Makes one and removes it.
bool CheckDiskWritable(const std::string& folder);
