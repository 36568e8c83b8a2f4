#include "base/Folders.h"

#include <optional>

#include "base/Exceptions.h"
#include "base/Messages.h"
#include "base/Paths.h"
#include "base/Texts.h"
#include "platform/Files.h"
#include "platform/SpecialFolders.h"
#include "platform/WholeFiles.h"

namespace {

std::optional<std::string>& KnownPicturesFolder() {
  static std::optional<std::string> folder;
  return folder;
}

/// The documents folder, made if it is only named yet. Where it has no place, as on a disk that is away, the
/// home folder stands in.
std::string FindDocumentsFolder() {
  std::string documents = platform::DocumentsFolder();
  if (documents.empty()) throw CError("Could not access My Documents folder");
  platform::FileStatus status;
  const bool stands = !platform::GetStatus(documents, status) && status.IsFolder;
  if (stands || !platform::CreateFolder(documents)) return documents;
  std::string home = platform::HomeFolder();
  return home.empty() ? documents : home;
}

/// Makes the pictures folder where the user's documents are, and says so if it wasn't there.
std::string MakePicturesFolder() {
  std::string folder = JoinPath(FindDocumentsFolder(), LoadText(StringId::PicturesFolderName));
  if (!platform::CreateFolder(folder)) ShowMessageId(StringId::PicturesFolderCreated);
  return folder;
}

}  // namespace

bool FileExists(const std::string& path, bool allowFolder) {
  platform::FileStatus status;
  const std::error_code error = platform::GetStatus(path, status);
  if (error) return error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory;
  return allowFolder || !status.IsFolder;
}

std::string GetProgramFolder() { return WithClosingSlash(platform::ExecutableFolder()); }

std::string GetMyPicturesFolder() {
  std::optional<std::string>& folder = KnownPicturesFolder();
  if (!folder) {
    bool known = false;
    std::string pictures = platform::PicturesFolder(known);
    folder = known ? std::move(pictures) : MakePicturesFolder();
  }
  return *folder;
}

void ForgetMyPicturesFolder() { KnownPicturesFolder().reset(); }

std::string GetActiveDiskPhotoFolder() {
  // The program's folder has no links in it, so the folder above it is what stands before its name.
  const std::string above = SplitPath(WithoutClosingSlash(GetProgramFolder())).Folder;
  return JoinPath(above, LoadText(StringId::PicturesFolderName));
}

std::string GetApplicationDataFolder() {
  if (platform::DataHome().empty()) throw CError("There is no home folder to keep the catalog in.");
  return platform::DataHome() + ToPlatformPath(LoadExpandedString(StringId::ApplicationDataFolder));
}

bool CheckDiskWritable(const std::string& folder) {
  platform::FileStatus status;
  if (platform::GetStatus(folder, status) || !status.IsFolder) return false;
  const std::string path = JoinPath(folder, "x###x");
  // A file that was left there goes; of a link the link alone. Mostly there is none to remove.
  static_cast<void>(platform::RemoveFile(path));
  const bool isWritable = !platform::WriteNewFile(path, "", 0);
  static_cast<void>(platform::RemoveFile(path));
  return isWritable;
}
