#pragma once

#include <string>

/// Keeps a copy of a storage's file as "<path>.old[n]" under the first free number from 1 up. The copy is
/// whole, and flushed, when it appears. A copy that can't be made is not reported; a missing file makes none.
void BackupFile(const std::string& path);
