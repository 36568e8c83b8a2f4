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
/// file and row are known to agree. What stands there after a kill, or after a disk refused, is for the next
/// rename or start to put right.
class CRenameIntent {
 public:
  explicit CRenameIntent(const CCatalog& catalog);

  /// Replaces what stands there. Flushed when it returns.
  std::error_code Write(const PhotoRename& rename) const;

  /// None if there is none, or it can't be read.
  std::optional<PhotoRename> Read() const;

  /// Removes the file. One that can't be removed does no harm: file and row agree.
  void Drop() const;

 private:
  const std::string Path;
};
