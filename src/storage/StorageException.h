#pragma once

#include <string>
#include <utility>

#include "base/Exceptions.h"

/// A read or write of an open storage failed: the disk is full or failed, or the file may no longer be
/// written. All uncommitted changes of the storage have been undone when this is raised, except in the case
/// that c4_Storage::Commit describes, or if a read failed only because a block of bytes is damaged. The
/// program can show the text, which names the file and the cause, and go on.
class CStorageException : public CException {
 public:
  explicit CStorageException(std::string message, bool isDamage = false)
      : CException(std::move(message)), Damage(isDamage) {}

  /// The file itself is damaged, so trying again can't help.
  bool IsDamage() const { return Damage; }

 private:
  bool Damage;
};

/// The file to open is damaged, cut short, empty or of another program, so opening it again can't help.
/// Every other CError of opening (locked, no rights, a folder) says nothing about the content of the file.
class CDamagedStorage : public CError {
 public:
  using CError::CError;
};
