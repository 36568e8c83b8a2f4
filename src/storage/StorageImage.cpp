#include "storage/StorageImage.h"

#include <sqlite3.h>

#include <vector>

#include "platform/Files.h"
#include "storage/DatabaseCopy.h"
#include "storage/StorageException.h"

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;

std::string MakeText(const std::string& path, const std::string& done) {
  return "The file \"" + path + "\" can't be " + done + ".";
}

}  // namespace

CScratchFile::CScratchFile() {
  const std::error_code error = platform::CreateTemporaryFile("", "vellumar-", Path);
  if (error) throw CStorageException("A temporary file can't be made: " + error.message() + ".");
}

CScratchFile::~CScratchFile() {
  // What stays is only a file in the temporary folder.
  static_cast<void>(platform::RemoveFile(Path));
}

void SaveStorageImage(const CDatabase& database, c4_Stream& stream) {
  const CScratchFile scratch;
  try {
    // A connection of its own sees what was committed and nothing else.
    const CConnection reader = Connect(database.GetPath(), SQLITE_OPEN_READONLY);
    CStatement vacuum(reader.get(), "VACUUM INTO ?");
    const std::string target = ToDatabaseName(scratch.GetPath());
    vacuum.Bind(1, std::string_view(target));
    vacuum.Run();
    const CConnection copy = Connect(scratch.GetPath(), SQLITE_OPEN_READWRITE);
    MarkAsOurs(copy.get());
  } catch (const CDatabaseError& error) {
    throw CStorageException(database.Describe("saved", error));
  }
  c4_FileStream file(scratch.GetPath(), "rb");
  std::vector<char> block(kBlock);
  std::size_t count = 0;
  bool whole = file.IsOpen();
  while (whole && (count = file.Read(block.data(), block.size())) > 0) {
    whole = stream.Write(block.data(), count);
  }
  if (!whole || !file.IsAtEnd() || !stream.Flush()) {
    throw CStorageException(MakeText(database.GetPath(), "saved: not all of it could be written"));
  }
}

CStorageImage::CStorageImage(c4_Stream& stream) {
  Receive(stream);
  Valid = Check();
}

void CStorageImage::Receive(c4_Stream& stream) const {
  c4_FileStream file(File.GetPath(), "wb");
  std::vector<char> block(kBlock);
  std::size_t count = 0;
  bool whole = file.IsOpen();
  while (whole && (count = stream.Read(block.data(), block.size())) > 0) {
    whole = file.Write(block.data(), count);
  }
  if (!whole || !file.Flush()) throw CStorageException(MakeText(File.GetPath(), "written"));
}

bool CStorageImage::Check() const {
  try {
    const CConnection connection = Connect(File.GetPath(), SQLITE_OPEN_READONLY);
    if (QueryInteger(connection.get(), "PRAGMA application_id") != kApplicationId) return false;
    CheckFileSize(connection.get(), File.GetPath());
    CStatement check(connection.get(), "PRAGMA quick_check(1)");
    return check.Step() && check.GetText(0) == "ok";
  } catch (const CDatabaseError& error) {
    if (error.IsDamage()) return false;
    throw CStorageException(MakeText(File.GetPath(), "read: " + error.GetMessage()));
  }
}

void CStorageImage::CopyInto(const CDatabase& database) const {
  try {
    const CConnection source = Connect(File.GetPath(), SQLITE_OPEN_READONLY);
    CopyDatabase(source.get(), database.GetConnection());
  } catch (const CDatabaseError& error) {
    throw CStorageException(database.Describe("written", error));
  }
}
