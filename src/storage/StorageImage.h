#pragma once

#include <string>

#include "storage/Database.h"
#include "storage/Stream.h"

/// A file in the temporary folder that goes with this object.
class CScratchFile {
 public:
  /// CStorageException if it can't be made.
  CScratchFile();
  ~CScratchFile();
  CScratchFile(const CScratchFile&) = delete;
  CScratchFile& operator=(const CScratchFile&) = delete;
  const std::string& GetPath() const { return Path; }

 private:
  std::string Path;
};

/// Writes what the storage held at its last commit, without free space. CStorageException.
void SaveStorageImage(const CDatabase& database, c4_Stream& stream);

/// A storage as a stream gave it, on disk until it is copied.
class CStorageImage {
 public:
  /// CStorageException if the disk doesn't take it.
  explicit CStorageImage(c4_Stream& stream);

  /// Whether it is one, whole.
  bool IsValid() const { return Valid; }

  /// Replaces everything in the database, durably; on failure (CStorageException) it is as it was.
  void CopyInto(const CDatabase& database) const;

 private:
  void Receive(c4_Stream& stream) const;
  bool Check() const;

  CScratchFile File;
  bool Valid = false;
};
