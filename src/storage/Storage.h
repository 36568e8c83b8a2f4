#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "storage/View.h"

/// A file of stored views, one SQLite table each, with one column a property and rows in order of rowid.
/// Integers and texts are held in memory while the storage is open, blocks of bytes are read when asked
/// for.
///
/// Changes belong to one open transaction, which Commit ends durably; what isn't committed when the storage
/// is destroyed, or the process killed, is dropped. A write that fails raises CStorageException after the
/// transaction has been undone in the file and in every view; the storage can still be used.
class c4_Storage {
 public:
  enum class Mode { ReadWrite, ReadOnly };

  /// Opens the storage at `path`. With ReadWrite a missing file is made; it appears under its name only
  /// when it is whole; a link is followed. An interrupted run's transaction is undone first, in both modes.
  /// Raises CError, with a text that names the file, if it is no storage, damaged, can't be made or read, or
  /// is locked by another process for 5 seconds; the file is then as it was. A file that is there is not
  /// written to: where it can't be, the first change raises.
  c4_Storage(const std::string& path, Mode mode);

  /// Drops what isn't committed. Views and rows of the storage become empty and invalid.
  ~c4_Storage();

  c4_Storage(const c4_Storage&) = delete;
  c4_Storage& operator=(const c4_Storage&) = delete;

  /// The stored view that `description` names, like "Asset[AssetID:I,Location:S,ID:B]". A missing view
  /// is made and missing properties are added (not in ReadOnly mode: there they read as empty and 0);
  /// views and properties that the file has besides are kept. CError if the description can't be read or
  /// the file holds tables of another program only.
  c4_View GetAs(std::string_view description);

  /// Ends the transaction: all changes since the last commit are on disk, flushed, when this returns. Does
  /// nothing when there are none. If only the last flush fails, CStorageException is raised although the
  /// changes hold; the views show them.
  void Commit();

  /// Loads what the file holds, if that could not be read when a commit failed. CStorageException.
  void Refresh();

  /// Undoes all changes since the last commit, in every view.
  void Rollback();

  /// Rewrites the file without its free space; it stays the same file, with its rights and the links to it.
  /// Uncommitted changes are undone, the views stay. CStorageException if it can't be done; the file then
  /// holds what it held.
  void Compact();

  /// The integer in the first row of a view; 0 if the file has none there; nothing if the value there is no
  /// 32-bit integer, which a view reads as 0.
  std::optional<std::int32_t> ReadFirstInteger(const std::string& view, const c4_IntProp& property);

 private:
  class Impl;
  std::unique_ptr<Impl> Inside;
};
