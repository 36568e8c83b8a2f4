#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The text without `blanks` at both ends, as a part of `text`.
std::string_view Trimmed(std::string_view text, std::string_view blanks = " \t\r\n");

/// The text of a field that holds several texts, as a list: "a, b". A token ends at a separator, or at the
/// end of the text, and has no blanks around it. Tokens are compared by their letters. Texts are UTF-8.
class CTokenList {
 public:
  /// `separators` are ASCII characters, the first of which stands between the tokens of GetText. Empty tokens
  /// are left out.
  CTokenList(std::string_view text, std::string separators);

  const std::vector<std::string>& GetTokens() const { return Tokens; }
  bool Contains(std::string_view token) const;
  void Add(std::string token);
  /// Removes every occurrence.
  void Remove(std::string_view token);

  /// The tokens with the first separator and a blank between them.
  std::string GetText() const;

 private:
  std::string Separators;
  std::vector<std::string> Tokens;
};

/// The characters that end a token in every field of several texts.
std::string GetListSeparators();
