#include "ui/back/TokenList.h"

#include <algorithm>
#include <utility>

#include "base/Texts.h"
#include "platform/TextCompare.h"

std::string_view Trimmed(std::string_view text, std::string_view blanks) {
  const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);  // npos + 1 is 0
}

CTokenList::CTokenList(std::string_view text, std::string separators) : Separators(std::move(separators)) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(Separators), text.size());
    if (const std::string_view token = Trimmed(text.substr(0, end)); !token.empty()) {
      Tokens.emplace_back(token);
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

bool CTokenList::Contains(std::string_view token) const {
  return std::any_of(Tokens.begin(), Tokens.end(),
                     [&](const std::string& one) { return platform::EqualLetters(one, token); });
}

void CTokenList::Add(std::string token) { Tokens.push_back(std::move(token)); }

void CTokenList::Remove(std::string_view token) {
  std::erase_if(Tokens, [&](const std::string& one) { return platform::EqualLetters(one, token); });
}

std::string CTokenList::GetText() const {
  std::string text;
  for (const std::string& token : Tokens) {
    if (!text.empty()) text += {Separators.front(), ' '};
    text += token;
  }
  return text;
}

std::string GetListSeparators() { return LoadText(StringId::ListSeparators); }
