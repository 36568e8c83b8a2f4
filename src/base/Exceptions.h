#pragma once

#include <string>
#include <utility>

#include "base/Texts.h"

/// The root of what the program raises. Raised by value, caught by reference.
class CThrowable {
 public:
  CThrowable() = default;
  explicit CThrowable(std::string message) : Message(std::move(message)) {}
  virtual ~CThrowable() = default;
  CThrowable(const CThrowable&) = default;
  CThrowable& operator=(const CThrowable&) = default;

  const std::string& GetMessage() const { return Message; }

 private:
  std::string Message;
};

/// Something that can't be put right: the program shows the message and ends. The message is English and
/// never from the string table.
class CError : public CThrowable {
 public:
  using CThrowable::CThrowable;
};

/// Something that the operation at hand may recover from.
class CException : public CThrowable {
 public:
  using CThrowable::CThrowable;

  /// The message is the string of that id, expanded.
  explicit CException(StringId message) : CThrowable(LoadExpandedString(message)) {}
};

/// The disk is full or failed, or a file may no longer be written or read. The program can show the text,
/// which names the file and the cause, and go on. All uncommitted changes of a storage have been undone when
/// one of its operations raises this, except in the case that c4_Storage::Commit describes, or if a read
/// failed only because a block of bytes is damaged.
class CStorageException : public CException {
 public:
  explicit CStorageException(std::string message, bool isDamage = false)
      : CException(std::move(message)), Damage(isDamage) {}

  /// The file itself is damaged, so trying again can't help.
  bool IsDamage() const { return Damage; }

 private:
  bool Damage;
};

/// The storage to open is damaged, cut short, empty or of another program, so opening it again can't help.
/// Every other CError of opening (locked, no rights, a folder) says nothing about the content of the file.
class CDamagedStorage : public CError {
 public:
  using CError::CError;
};
