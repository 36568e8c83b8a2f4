#include "ui/back/Completion.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/Unicode.h"

namespace {

/// The offset behind so many characters.
std::size_t SkipCharacters(std::string_view text, std::size_t count) {
  std::size_t offset = 0;
  while (count-- > 0 && offset < text.size()) offset += platform::CharacterLength(text, offset);
  return offset;
}

}  // namespace

CCompletion::CCompletion(std::vector<std::string> choices, std::string separators)
    : Choices(std::move(choices)), Separators(std::move(separators)) {
  Lowered.reserve(Choices.size());
  std::transform(Choices.begin(), Choices.end(), std::back_inserter(Lowered),
                 [](const std::string& choice) { return platform::ToLower(choice); });
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

std::string CCompletion::GetRemainder(std::string_view text, std::size_t caret) const {
  const std::string_view token = FindToken(text, caret);
  if (token.empty()) return {};
  const std::string lowered = platform::ToLower(token);
  const auto found = std::find_if(Lowered.begin(), Lowered.end(),
                                  [&](const std::string& choice) { return choice.starts_with(lowered); });
  if (found == Lowered.end()) return {};
  // The two cases of a letter may take different numbers of bytes.
  const std::string& choice = Choices[static_cast<std::size_t>(found - Lowered.begin())];
  return choice.substr(SkipCharacters(choice, platform::CountCharacters(token)));
}
