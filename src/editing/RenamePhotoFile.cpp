#include "editing/RenamePhotoFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/Exceptions.h"
#include "base/Format.h"
#include "base/Messages.h"
#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "editing/SafeFiles.h"
#include "platform/Files.h"
#include "platform/Unicode.h"
#include "platform/WholeFiles.h"

namespace {

constexpr std::size_t kLongestFileName = 255;    // bytes
constexpr int kFirstNumber = 2;                  // of a name that is taken
constexpr std::size_t kLargestIntent = 1 << 16;  // bytes

struct PhotoRename {
  std::int32_t AssetId = 0;
  std::string OldPath, NewPath;
};

/// The number and the two paths, each closed by a zero byte, which no path holds.
std::optional<PhotoRename> Parse(std::string_view text) {
  std::array<std::string_view, 3> parts;
  for (std::string_view& part : parts) {
    const std::size_t end = text.find('\0');
    if (end == std::string_view::npos) return {};
    part = text.substr(0, end);
    text.remove_prefix(end + 1);
  }
  PhotoRename rename;
  const auto [end, error] = std::from_chars(parts[0].begin(), parts[0].end(), rename.AssetId);
  if (error != std::errc() || end != parts[0].end() || !text.empty()) return {};
  rename.OldPath = parts[1];
  rename.NewPath = parts[2];
  return rename;
}

/// What a rename is about to do, in a small file beside the catalog. It is written before the photo's file
/// moves and removed when file and row are known to agree. One that a killed program or a failing disk has
/// left is handled by the next rename or start.
class CRenameIntent {
 public:
  explicit CRenameIntent(const CCatalog& catalog) : Path(catalog.GetPath() + ".rename") {}

  /// Replaces the file, flushed.
  std::error_code Write(const PhotoRename& rename) const {
    std::string text;
    for (const std::string& part : {std::to_string(rename.AssetId), rename.OldPath, rename.NewPath}) {
      text += part + '\0';
    }
    return platform::WriteFileAtomically(Path, text.data(), text.size());
  }

  /// None if there is no file, or it can't be read.
  std::optional<PhotoRename> Read() const {
    std::vector<std::uint8_t> bytes;
    if (platform::ReadWholeFile(Path, bytes, kLargestIntent)) return {};
    return Parse({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }

  /// Removes the file. One that can't be removed does no harm: file and row agree.
  void Drop() const { static_cast<void>(platform::RemoveFile(Path)); }

 private:
  const std::string Path;
};

bool IsFileName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

bool IsThere(const std::string& path) {
  platform::FileStatus status;
  return !platform::GetEntryStatus(path, status);
}

/// Whether a name that isn't the file's own leads to that file all the same, on a disk that ignores case:
/// both names are there, and the folder lists one. Inode numbers can't be relied on there.
bool LeadsToOwnFile(const std::string& folder, const std::string& name, const std::string& own) {
  if (name == own || !platform::EqualNoCase(name, own)) return false;
  if (!IsThere(folder + name) || !IsThere(folder + own)) return false;
  std::vector<platform::FolderEntry> entries;
  if (platform::ListFolder(folder, entries)) return false;
  const auto isSpelling = [&own](const auto& entry) { return platform::EqualNoCase(entry.Name, own); };
  return std::count_if(entries.begin(), entries.end(), isSpelling) == 1;
}

std::string FindFreeName(const CAssetRecord& photo, const std::string& title, const std::string& extension,
                         int number) {
  const std::size_t room = kLongestFileName - OriginalCopyPath(std::string()).size();
  for (;; ++number) {
    const std::string end = (number < kFirstNumber ? std::string() : Format("-%d", number)) + extension;
    std::string name(platform::Truncated(title, room - std::min(room, end.size())));
    name += end;
    if (IsNameFree(photo, name)) return name;
  }
}

/// Brings file and row together after a rename that didn't come to its end. The row gets the new name last,
/// so one that has it is right. Else the file goes back to the old name; the row follows only a file that
/// can't be moved. False if neither can be done, or isn't sure to last.
bool Settle(CCatalog& catalog, const PhotoRename& rename) {
  CAssetRecord photo = catalog.FindAssetById(rename.AssetId);
  if (photo.GetPath() != rename.OldPath || IsThere(rename.OldPath)) return true;
  if (!IsThere(rename.NewPath)) return false;  // the disk may be away
  const CAssetRecord owner = catalog.FindAssetByPath(rename.NewPath);
  if (owner.IsValid() && owner.GetAssetID() != rename.AssetId) return true;  // another photo is there now
  if (!platform::RenameToNewName(rename.NewPath, rename.OldPath)) return true;
  if (IsThere(rename.OldPath)) return false;
  photo.SetPath(rename.NewPath);
  return true;
}

/// Settles what an earlier rename has left. CStorageException if the catalog can't be read or written.
void SettleLast(CCatalog& catalog) {
  const CRenameIntent intent(catalog);
  const auto rename = intent.Read();
  catalog.Refresh();
  if (!rename || Settle(catalog, *rename)) intent.Drop();
}

/// Renames the file and then the row: both or neither.
std::error_code MoveBoth(CAssetRecord photo, const std::string& newPath) {
  CCatalog& catalog = *CCatalog::GetInstance();
  const PhotoRename rename{photo.GetAssetID(), photo.GetPath(), newPath};
  const CRenameIntent intent(catalog);
  if (const auto error = intent.Write(rename)) return error;
  const std::error_code error = platform::RenameToNewName(rename.OldPath, newPath);
  try {
    if (!error) photo.SetPath(newPath);
    if (!error || Settle(catalog, rename)) intent.Drop();
  } catch (const CStorageException&) {
    // The commit may have taken effect all the same. Until that is flushed a power loss can take it back, so
    // then the intent stays.
    catalog.Refresh();
    const bool settled = Settle(catalog, rename);
    if (photo.GetPath() == newPath) return {};
    if (settled) intent.Drop();
    throw;
  }
  return photo.GetPath() == newPath ? std::error_code() : error;
}

}  // namespace

bool IsNameFree(const CAssetRecord& photo, const std::string& name) {
  const std::string folder = photo.GetFolder();
  const std::string own = photo.GetFilename();
  if (name == own || LeadsToOwnFile(folder, name, own)) return true;
  return !IsThere(folder + name) && !IsThere(OriginalCopyPath(folder + name));
}

std::string FindFreeName(const CAssetRecord& photo, const std::string& title, const std::string& extension) {
  return FindFreeName(photo, title, extension, kFirstNumber - 1);
}

std::error_code RenamePhotoFile(CAssetRecord photo, const std::string& newName) {
  const std::string oldPath = photo.GetPath();
  const std::string name = GetExtension(newName).empty() ? newName + GetExtension(oldPath) : newName;
  if (!IsFileName(newName)) return make_error_code(std::errc::invalid_argument);
  const std::string newPath = photo.GetFolder() + name;
  if (newPath == oldPath) return {};
  SettleLast(*CCatalog::GetInstance());
  if (!IsNameFree(photo, name)) return make_error_code(std::errc::file_exists);
  if (!IsThere(newPath)) return MoveBoth(photo, newPath);

  // On a disk that ignores case a rename to another spelling does nothing, so the file is renamed twice.
  const std::string between = FindFreeName(photo, photo.GetTitle(), GetExtension(oldPath), kFirstNumber);
  if (const auto error = MoveBoth(photo, photo.GetFolder() + between)) return error;
  const std::error_code error = MoveBoth(photo, newPath);
  if (error) static_cast<void>(MoveBoth(photo, oldPath));
  return error;
}

void FinishInterruptedRename(CCatalog& catalog) {
  try {
    SettleLast(catalog);
  } catch (const CStorageException& exception) {
    ShowMessage(exception.GetMessage(), false, MessageParent::ProgressWindow);
  }
}
