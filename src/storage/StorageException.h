#pragma once

#include "base/Exceptions.h"

/// A read or write of a storage failed after it was opened: the disk is full, failed, or may no longer be
/// written. All uncommitted changes of the storage have been undone by the time this is raised, so the
/// program can show the text, which names the file and what is wrong, and go on.
class CStorageException : public CException {
 public:
  using CException::CException;
};

/// The file to open is no whole storage of ours: it is damaged, cut short, empty or of another program.
/// Opening it again can't help. Every other CError of opening (locked, may not be read or written, a
/// folder) says nothing against what is in the file.
class CDamagedStorage : public CError {
 public:
  using CError::CError;
};
