#include "editing/BackupFile.h"

#include <system_error>

#include "base/Texts.h"
#include "storage/StorageFile.h"

void BackupFile(const std::string& path) {
  std::error_code error = std::make_error_code(std::errc::file_exists);
  for (int number = 1; error == std::errc::file_exists; ++number) {
    error = CopyStorageFile(path, FormatString(StringId::BackupFileName, path, number));
  }
}
