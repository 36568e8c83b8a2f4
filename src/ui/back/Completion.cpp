#include "ui/back/Completion.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/TextCompare.h"
#include "platform/Unicode.h"
#include "ui/back/TokenList.h"

namespace {

/// What follows in `text` behind the part that folds to `foldedBeginning`. That part may be longer or
/// shorter: a letter can have another number of bytes in the other case, or with its accent written behind
/// it.
std::string_view FindBehind(std::string_view text, const std::string& foldedBeginning) {
  constexpr std::size_t kLongestCharacter = 4;
  std::string folded;
  for (std::size_t end = 0; end < text.size();) {
    end += platform::CharacterLength(text, end);
    platform::FoldLetters(text.substr(0, end), folded);
    if (folded == foldedBeginning) return text.substr(end);
    if (folded.size() > foldedBeginning.size() + kLongestCharacter) break;
  }
  return {};
}

}  // namespace

CCompletion::CCompletion(std::vector<std::string> choices, std::string separators)
    : Choices(std::move(choices)), Separators(std::move(separators)) {
  Folded.reserve(Choices.size());
  std::transform(Choices.begin(), Choices.end(), std::back_inserter(Folded),
                 [](const std::string& choice) { return platform::FoldLetters(choice); });
}

std::string_view CCompletion::FindToken(std::string_view text, std::size_t caret) const {
  if (caret > text.size()) return {};
  const std::size_t end =
      Separators.empty() ? text.size() : std::min(text.find_first_of(Separators, caret), text.size());
  if (end != caret) return {};
  if (Separators.empty()) return text;
  // npos + 1 is the start of the text.
  const std::size_t start = caret == 0 ? 0 : text.find_last_of(Separators, caret - 1) + 1;
  const std::string_view token = text.substr(start, caret - start);
  return token.substr(std::min(token.find_first_not_of(' '), token.size()));
}

std::string CCompletion::Complete(std::string_view text, std::size_t caret) {
  const std::string_view token = FindToken(text, caret);
  if (token.empty()) return {};
  const std::string folded = platform::FoldLetters(token);
  const auto found = std::find_if(Folded.begin(), Folded.end(),
                                  [&](const std::string& choice) { return choice.starts_with(folded); });
  if (found == Folded.end()) return {};
  const auto choice = static_cast<std::size_t>(found - Folded.begin());
  const std::string_view remainder = FindBehind(Choices[choice], folded);
  if (remainder.empty()) {
    Completed.erase(choice);
  } else {
    Completed.insert(choice);
  }
  return std::string(remainder);
}

std::string_view CCompletion::GetSpelling(std::string_view token) const {
  const std::string folded = platform::FoldLetters(token);
  const auto found = std::find_if(Completed.begin(), Completed.end(),
                                  [&](std::size_t choice) { return Folded[choice] == folded; });
  return found == Completed.end() ? token : Choices[*found];
}

std::string CCompletion::TakeOverSpelling(std::string_view text) const {
  std::string result;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end =
        Separators.empty() ? text.size() : std::min(text.find_first_of(Separators, begin), text.size());
    const std::string_view piece = text.substr(begin, end - begin);
    const std::string_view token = Separators.empty() ? piece : Trimmed(piece, " ");
    const std::size_t blanks = static_cast<std::size_t>(token.data() - piece.data());
    result += piece.substr(0, blanks);
    result += GetSpelling(token);
    result += piece.substr(blanks + token.size());
    if (end < text.size()) result += text[end];
    begin = end + 1;
  }
  return result;
}
