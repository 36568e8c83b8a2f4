#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

class CCatalog;

struct PhotoRename {
  std::int32_t AssetId = 0;
  std::string OldPath, NewPath;
  friend bool operator==(const PhotoRename&, const PhotoRename&) = default;
};

/// What a rename is about to do, in a small file beside the catalog from before the photo's file moves until
/// its row has followed. A kill in between leaves it for the next start; else the file goes with the object.
class CRenameIntent {
 public:
  explicit CRenameIntent(const CCatalog& catalog);
  ~CRenameIntent();
  CRenameIntent(const CRenameIntent&) = delete;
  CRenameIntent& operator=(const CRenameIntent&) = delete;

  /// Flushed when it returns.
  std::error_code Write(const PhotoRename& rename) const;

  /// Leaves the file for the next start.
  void Keep() { Kept = true; }

  /// None if there is none, or it can't be read.
  std::optional<PhotoRename> Read() const;

 private:
  const std::string Path;
  bool Kept = false;
};
