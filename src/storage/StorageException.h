#pragma once

#include "base/Exceptions.h"

/// A read or write of a storage failed after it was opened: the disk is full, failed, or may no longer be
/// written. All uncommitted changes of the storage have been undone by the time this is raised, so the
/// program can show the text, which names the file and what is wrong, and go on.
class CStorageException : public CException {
 public:
  using CException::CException;
};
