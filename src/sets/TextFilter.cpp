#include "sets/TextFilter.h"

#include <algorithm>
#include <cstring>

#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "platform/TextCompare.h"
#include "platform/Unicode.h"

namespace {

/// std::string_view::find is several times slower on texts of this length.
std::size_t Find(std::string_view text, std::string_view wanted, std::size_t from) {
  const void* const found = ::memmem(text.data() + from, text.size() - from, wanted.data(), wanted.size());
  if (found == nullptr) return std::string_view::npos;
  return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

/// Whether characters of the text begin, or the text ends, at both offsets.
bool AreBoundaries(std::string_view text, std::size_t first, std::size_t second) {
  std::size_t at = 0;
  while (at < first) at += platform::CharacterLength(text, at);
  if (at != first) return false;
  while (at < second) at += platform::CharacterLength(text, at);
  return at == second;
}

}  // namespace

CTextMatcher::CTextMatcher(std::string_view text) {
  const std::string folded = platform::FoldLetters(text);
  for (std::size_t begin = 0; begin < folded.size();) {
    const std::size_t end = std::min(folded.find(' ', begin), folded.size());
    if (end > begin) {
      std::string token = folded.substr(begin, end - begin);
      const bool isWhole = platform::IsValidUtf8(token);
      Tokens.push_back({std::move(token), isWhole});
    }
    begin = end + 1;
  }
}

bool CTextMatcher::Occurs(const Token& token, std::string_view folded) const {
  for (std::size_t at = Find(folded, token.Text, 0); at != std::string_view::npos;
       at = Find(folded, token.Text, at + 1)) {
    if (token.IsWhole || AreBoundaries(folded, at, at + token.Text.size())) return true;
  }
  return false;
}

bool CTextMatcher::TextHits(std::string_view haystack) const {
  platform::FoldLetters(haystack, Folded);
  return std::any_of(Tokens.begin(), Tokens.end(),
                     [this](const Token& token) { return Occurs(token, Folded); });
}

CTextFilter::CTextFilter(std::string text) : Text(std::move(text)), Matcher(Text) {}

void CTextFilter::Refresh() {
  HitAssets.Clear();
  const CCatalog* const catalog = CCatalog::GetInstance();
  if (catalog == nullptr) return;
  const c4_View stamps = catalog->GetStamps();
  for (int i = 0; i < stamps.GetSize(); ++i) {
    if (IsSearched(static_cast<StampId>(stamps.GetIntegerAt(props::StampType, i))) &&
        Matcher.TextHits(stamps.GetTextAt(props::SortedString, i))) {
      HitAssets.Add(stamps.GetIntegerAt(props::AssetID, i));
    }
  }
}

bool CTextFilter::Matches(const CAssetRecord& record) const {
  return HitAssets.Contains(record.GetAssetID()) || Matcher.TextHits(props::Filename.Get(record.GetRow()));
}
