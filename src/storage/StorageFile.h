#pragma once

#include <string>
#include <system_error>

/// What is done to a storage's file as a whole, while no storage is open on it. A killed run may have left
/// a journal beside the file; these take it into account, where a plain copy or rename would not.

/// Copies the storage at `from` to a name that is not taken (std::errc::file_exists if it is). The copy is
/// whole, and flushed, when its name appears. An interrupted transaction of `from` is undone first.
std::error_code CopyStorageFile(const std::string& from, const std::string& to);

/// Gives a storage's file another, free name, and its journal too.
std::error_code SetStorageFileAside(const std::string& from, const std::string& to);
