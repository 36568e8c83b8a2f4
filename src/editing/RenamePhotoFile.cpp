#include "editing/RenamePhotoFile.h"

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/Messages.h"
#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "editing/RenameIntent.h"
#include "platform/Files.h"
#include "storage/StorageException.h"

namespace {

bool IsFileName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

/// Whether both names lead to one file: on a disk that doesn't know case they can.
bool AreOneFile(const std::string& path, const std::string& other) {
  platform::FileStatus first, second;
  if (platform::GetStatus(path, first) || platform::GetStatus(other, second)) return false;
  return first.Device == second.Device && first.Inode == second.Inode && first.LinkCount == 1;
}

std::error_code Move(const std::string& from, const std::string& to) {
  const std::error_code error = platform::RenameToNewName(from, to);
  if (error == std::errc::file_exists && AreOneFile(from, to)) return platform::RenameOver(from, to);
  return error;
}

/// Undoes a move that was reported as failed but may have taken place, or that the row didn't follow. False
/// if the file isn't under its old name then.
bool MoveBack(const std::string& oldPath, const std::string& newPath) {
  return FileExists(oldPath, false) || !FileExists(newPath, false) || !Move(newPath, oldPath);
}

}  // namespace

std::error_code RenamePhotoFile(CAssetRecord photo, const std::string& newName) {
  const std::string oldPath = photo.GetPath();
  const std::string name = GetExtension(newName).empty() ? newName + GetExtension(oldPath) : newName;
  if (!IsFileName(newName)) return std::make_error_code(std::errc::invalid_argument);
  const std::string newPath = photo.GetFolder() + name;
  if (newPath == oldPath) return {};

  CRenameIntent intent(*CCatalog::GetInstance());
  if (const auto error = intent.Write({photo.GetAssetID(), oldPath, newPath})) return error;
  std::error_code error;
  try {
    error = Move(oldPath, newPath);
    if (!error) photo.SetPath(newPath);
  } catch (const CThrowable&) {
    if (!MoveBack(oldPath, newPath)) intent.Keep();
    throw;
  }
  if (error && !MoveBack(oldPath, newPath)) intent.Keep();
  return error;
}

void FinishInterruptedRename(CCatalog& catalog) {
  CRenameIntent intent(catalog);
  const auto rename = intent.Read();
  if (!rename) return;
  CAssetRecord photo = catalog.FindAssetById(rename->AssetId);
  const bool moved = !FileExists(rename->OldPath, false) && FileExists(rename->NewPath, false);
  if (photo.GetPath() != rename->OldPath || !moved) return;
  try {
    photo.SetPath(rename->NewPath);
  } catch (const CStorageException& exception) {
    intent.Keep();
    ShowMessage(exception.GetMessage(), false, MessageParent::ProgressWindow);
  }
}
