#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Overwrites the bytes of a text and empties it.
void WipeText(std::string& text);

/// A text that is or holds a password. Its bytes are overwritten when it changes its place in memory, is
/// emptied or goes.
class CSecretText {
 public:
  CSecretText() = default;
  explicit CSecretText(std::string_view text) { Append(text); }
  ~CSecretText() { Clear(); }
  CSecretText(const CSecretText&) = delete;
  CSecretText& operator=(const CSecretText&) = delete;

  /// Makes room for `size` bytes in all, and no more than that.
  void Reserve(std::size_t size);
  void Append(std::string_view more);
  void Assign(std::string_view text);

  /// Gives the memory back too.
  void Clear();

  bool IsEmpty() const { return Text.empty(); }
  std::string_view Get() const { return Text; }

 private:
  std::string Text;
};
