#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// Gives an environment variable another value, or none, and puts the old one back when it goes.
class CEnvironmentVariable {
 public:
  CEnvironmentVariable(const char* name, const std::optional<std::string>& value) : Name(name) {
    if (const char* old = std::getenv(name)) Old = old;
    Set(value);
  }
  ~CEnvironmentVariable() { Set(Old); }
  CEnvironmentVariable(const CEnvironmentVariable&) = delete;
  CEnvironmentVariable& operator=(const CEnvironmentVariable&) = delete;

 private:
  void Set(const std::optional<std::string>& value) const {
    value ? ::setenv(Name, value->c_str(), 1) : ::unsetenv(Name);
  }

  const char* const Name;
  std::optional<std::string> Old;
};
