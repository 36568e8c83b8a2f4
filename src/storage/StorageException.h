#pragma once

#include <string>
#include <utility>

#include "base/Exceptions.h"

/// A read or write of a storage failed after it was opened: the disk is full, failed, or may no longer be
/// written. When a write failed all uncommitted changes of the storage have been undone by the time this is
/// raised, unless Commit says otherwise; so they have when the disk failed to read. The program can show the
/// text, which names the file and what is wrong, and go on. A block of bytes that is damaged leaves the
/// changes as they are.
class CStorageException : public CException {
 public:
  explicit CStorageException(std::string message, bool isDamage = false)
      : CException(std::move(message)), Damage(isDamage) {}

  /// The file itself is damaged, which no room on the disk will mend.
  bool IsDamage() const { return Damage; }

 private:
  bool Damage;
};

/// The file to open is no whole storage of ours: it is damaged, cut short, empty or of another program.
/// Opening it again can't help. Every other CError of opening (locked, may not be read or written, a
/// folder) says nothing against what is in the file.
class CDamagedStorage : public CError {
 public:
  using CError::CError;
};
