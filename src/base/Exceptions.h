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
