#include "sharing/MailFolder.h"

#include <cstdint>
#include <ctime>
#include <system_error>
#include <vector>

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "platform/Files.h"
#include "platform/SpecialFolders.h"

namespace {

constexpr std::int64_t kSecondsKept = std::int64_t{7} * 24 * 60 * 60;
constexpr std::uint32_t kOwnerAlone = 0700;

/// The folder of all mails. It has no blanks, which not all services put into an address as they should.
std::string GetMailsFolder() { return platform::CacheHome() + "/vellumar/mail"; }

std::error_code MakeMailsFolder(const std::string& folder) {
  if (const auto error = platform::CreateFolders(SplitPath(folder).Folder)) return error;
  const std::error_code error = platform::CreatePrivateFolder(folder);
  if (error != std::errc::file_exists) return error;
  return platform::SetPermissions(folder, kOwnerAlone);
}

/// Makes a folder named after the time: a name of an old mail, which may still wait to be sent, doesn't come
/// back.
std::error_code MakeFolderOfMail(std::string& path) {
  const std::string folder = GetMailsFolder();
  if (const auto error = MakeMailsFolder(folder)) return error;
  const std::string name = std::to_string(std::time(nullptr));
  std::error_code error;
  int number = 1;
  do {
    path = JoinPath(folder, number == 1 ? name : name + "-" + std::to_string(number));
    error = platform::CreatePrivateFolder(path);
    ++number;
  } while (error == std::errc::file_exists);
  return error;
}

}  // namespace

CMailFolder::CMailFolder() {
  if (const auto error = MakeFolderOfMail(Path)) {
    throw CStorageException("\"" + Path + "\" can't be made: " + error.message() + ".");
  }
}

CMailFolder::~CMailFolder() {
  // What stays goes when it's old.
  if (!IsKept) static_cast<void>(platform::RemoveFolder(Path));
}

void RemoveOldMailFolders() {
  const std::string folder = GetMailsFolder();
  std::vector<platform::FolderEntry> entries;
  static_cast<void>(platform::ListFolder(folder, entries));
  const std::int64_t oldest = std::time(nullptr) - kSecondsKept;
  for (const platform::FolderEntry& entry : entries) {
    if (entry.IsLink || !entry.IsFolder || entry.Status.Modified >= oldest) continue;
    static_cast<void>(platform::RemoveFolder(JoinPath(folder, entry.Name)));
  }
}
