#include "storage/Database.h"

#include <sqlite3.h>

#include <filesystem>

#include "base/Exceptions.h"
#include "platform/Files.h"
#include "platform/WholeFiles.h"
#include "storage/StorageFile.h"

namespace {

std::string MakeAbsolute(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.string();
}

std::string MakeText(const std::string& path, std::string_view done, std::string_view reason) {
  return "The file \"" + path + "\" can't be " + std::string(done) + ": " + std::string(reason) + ".";
}

/// An empty file in the temporary folder, removed with this object.
class CScratchFile {
 public:
  CScratchFile() {
    const std::error_code error = platform::CreateTemporaryFile("", "vel", Path);
    if (error) {
      throw CDatabaseError(SQLITE_CANTOPEN, "no temporary file can be made (" + error.message() + ")");
    }
  }
  ~CScratchFile() {
    // A file that stays in the temporary folder does no harm.
    static_cast<void>(platform::RemoveFile(Path));
  }
  CScratchFile(const CScratchFile&) = delete;
  CScratchFile& operator=(const CScratchFile&) = delete;
  const std::string& GetPath() const { return Path; }

 private:
  std::string Path;
};

}  // namespace

CDatabase::CDatabase(const std::string& path, bool readOnly)
    : Path(platform::FollowLinks(MakeAbsolute(path))), ReadOnly(readOnly) {
  if (!IsReadOnly()) MakeIfMissing();
  CheckIsFile();
  try {
    Open();
  } catch (const CDatabaseError& error) {
    Fail(error);
  }
}

/// A new file gets its name when it is whole, flushed and marked as ours, so an empty file is never a new
/// storage. No file is made where a link leads to nothing: the disk of its target may not be mounted.
void CDatabase::MakeIfMissing() const {
  platform::FileStatus status;
  std::error_code error = platform::GetEntryStatus(Path, status);
  if (error != std::errc::no_such_file_or_directory) return;
  CNewStorageFile file(Path);
  error = file.Create();
  if (error) throw CError(MakeText(Path, "made", error.message()));
  try {
    MarkAsOurs(Connect(file.GetPath(), SQLITE_OPEN_READWRITE).get());
  } catch (const CDatabaseError& failure) {
    throw CError(Describe("made", failure));
  }
  error = file.GiveName();
  // Another process may have made the file meanwhile; that one is used.
  if (error && error != std::errc::file_exists) throw CError(MakeText(Path, "made", error.message()));
}

void CDatabase::CheckIsFile() const {
  platform::FileStatus status;
  if (const auto error = platform::GetStatus(Path, status)) {
    throw CError(MakeText(Path, "opened", error.message()));
  }
  if (status.IsFolder) throw CError(MakeText(Path, "opened", "it is a folder"));
  if (!status.IsRegular) throw CError(MakeText(Path, "opened", "it is not a regular file"));
  if (status.Size < kSmallestFile) {
    const bool empty = status.Size == 0;
    throw CDamagedStorage(MakeText(Path, "opened", empty ? "it is damaged (it is empty)" : "it is damaged"));
  }
}

void CDatabase::Open() {
  if (IsReadOnly()) {
    OpenForReading();
  } else {
    OpenForWriting();
  }
}

void CDatabase::OpenForReading() {
  try {
    ConnectAndCheck(SQLITE_OPEN_READONLY);
  } catch (const CDatabaseError& error) {
    if (error.GetExtendedCode() != SQLITE_READONLY_ROLLBACK) throw;
    RecoverFromJournal();
    ConnectAndCheck(SQLITE_OPEN_READONLY);
  }
}

/// Writes nothing, so that a file on a full or write-protected disk can be read; the first change reports
/// the fault.
void CDatabase::OpenForWriting() {
  ConnectAndCheck(SQLITE_OPEN_READWRITE);
  if (!Ours) return;
  try {
    // Another tool may have switched the file to a log of its own, which a plain copy would miss.
    Execute("PRAGMA journal_mode=DELETE");
  } catch (const CDatabaseError&) {
    // A later session tries again.
  }
}

void CDatabase::ConnectAndCheck(int flags) {
  Connection = Connect(Path, flags);
  Execute("BEGIN");
  CheckContent();
  DataVersion = Prepare("PRAGMA data_version");
  FirstDataVersion = GetDataVersion();
  Execute("ROLLBACK");
}

/// After a kill in the middle of a transaction a journal is left beside the file. Only a connection that may
/// write can restore the file from it, which it does before it reads.
void CDatabase::RecoverFromJournal() const {
  const CConnection writer = Connect(Path, SQLITE_OPEN_READWRITE);
  CStatement(writer.get(), "SELECT count(*) FROM sqlite_schema").Run();
}

void CDatabase::CheckContent() {
  QueryInteger("SELECT count(*) FROM sqlite_schema");
  CheckFileSize(Connection.get(), Path);
  ReadMark();
}

void CDatabase::CheckAgain() {
  int moved = 0;
  const int code = sqlite3_file_control(Connection.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  if (code == SQLITE_OK && moved != 0) throw CDatabaseError(SQLITE_READONLY_DBMOVED, Connection.get());
  const bool wasOurs = Ours;
  CheckContent();
  // SQLite takes a file of no bytes for an empty database.
  if (wasOurs ? Ours : QueryInteger("SELECT count(*) FROM sqlite_schema") > 0) return;
  Ours = wasOurs;
  throw CDatabaseError(SQLITE_CORRUPT, "another program has put something else in its place");
}

/// SQLite's own VACUUM would renumber the rows. A rename of the compact copy over the file would lose the
/// file's rights, a link to it, and the locks of others that have it open; SQLite's backup keeps them, and
/// its journal brings the old content back after a kill.
void CDatabase::Compact() {
  const CScratchFile scratch;
  const std::string target = ToDatabaseName(scratch.GetPath());
  CStatement vacuum = Prepare("VACUUM INTO ?");
  vacuum.Bind(1, std::string_view(target));
  vacuum.Run();
  const CConnection copy = Connect(scratch.GetPath(), SQLITE_OPEN_READWRITE);
  MarkAsOurs(copy.get());
  CopyDatabase(copy.get(), Connection.get());
}

void CDatabase::ReadMark() { Ours = QueryInteger("PRAGMA application_id") == kApplicationId; }

void CDatabase::Fail(const CDatabaseError& error) const {
  if (error.IsDamage()) throw CDamagedStorage(Describe("opened", error));
  throw CError(Describe("opened", error));
}

std::string CDatabase::Describe(std::string_view done, const CThrowable& reason) const {
  return MakeText(Path, done, reason.GetMessage());
}

void CDatabase::Execute(const std::string& sql) const { Prepare(sql).Run(); }

std::int64_t CDatabase::QueryInteger(std::string_view sql) const {
  return ::QueryInteger(Connection.get(), sql);
}

bool CDatabase::IsInTransaction() const { return sqlite3_get_autocommit(Connection.get()) == 0; }

std::int64_t CDatabase::GetDataVersion() {
  const CStatementUse use(DataVersion);
  return use->Step() ? use->GetInteger(0) : 0;
}
