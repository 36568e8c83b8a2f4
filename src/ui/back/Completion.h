#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// Finds, while a text is typed, the earlier text that it may become. Texts are compared by their letters.
/// Made once for each edit.
class CCompletion {
 public:
  /// With `separators`, ASCII characters, a text is a list and its token under the caret is completed;
  /// without, the whole text is.
  explicit CCompletion(std::vector<std::string> choices = {}, std::string separators = {});

  /// What follows the caret in the first choice that begins with the token. Empty if there is none, if that
  /// choice is no longer than the token, if the token is empty, or if it goes on behind the caret, which is
  /// an offset in bytes.
  std::string Complete(std::string_view text, std::size_t caret);

  /// The text with each token that has become one of the choices by being completed, and wasn't typed to its
  /// end, in the spelling of that choice.
  std::string TakeOverSpelling(std::string_view text) const;

 private:
  std::string_view FindToken(std::string_view text, std::size_t caret) const;
  std::string_view GetSpelling(std::string_view token) const;

  std::vector<std::string> Choices;
  std::vector<std::string> Folded;  // the choices
  std::string Separators;
  std::set<std::size_t> Completed;  // choices that a token was completed to
};
