#include "storage/NewStorageFile.h"

#include "platform/Files.h"

CNewStorageFile::~CNewStorageFile() {
  if (Path.empty()) return;
  // What made the file useless is the error to report, not a removal that fails as well.
  static_cast<void>(RemoveIfThere(GetJournalPath(Path)));
  static_cast<void>(RemoveIfThere(Path));
}

std::error_code CNewStorageFile::Create() {
  // Not a name that the search for photos takes for an abandoned file: nothing is locked while SQLite writes.
  return platform::CreateTemporaryFile(Target, std::string(platform::kUnfinishedPrefix) + "db-", Path);
}

std::error_code CNewStorageFile::GiveName() {
  // A journal or a log without its file would be taken for the new file's own and played into it.
  platform::FileStatus taken;
  if (!platform::GetStatus(Target, taken)) return make_error_code(std::errc::file_exists);
  if (const auto error = RemoveIfThere(GetJournalPath(Target))) return error;
  if (const auto error = RemoveIfThere(GetLogPath(Target))) return error;
  return platform::RenameToNewName(Path, Target);
}

std::string GetJournalPath(const std::string& path) { return path + "-journal"; }

std::string GetLogPath(const std::string& path) { return path + "-wal"; }

std::error_code RemoveIfThere(const std::string& path) {
  const std::error_code error = platform::RemoveFile(path);
  return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
}
