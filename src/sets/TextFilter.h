#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sets/AssetIdSet.h"
#include "sets/PhotoFilter.h"

/// Finds words in texts: any one of the words in any place of the text. Texts are compared by their letters;
/// words begin and end between characters.
class CTextMatcher {
 public:
  /// `text` is cut into words at its spaces.
  explicit CTextMatcher(std::string_view text);

  bool TextHits(std::string_view haystack) const;

 private:
  struct Token {
    std::string Text;  // folded
    bool IsWhole;      // made of whole characters, so that no hit can begin or end inside one
  };
  bool Occurs(const Token& token, std::string_view folded) const;

  std::vector<Token> Tokens;
  mutable std::string Folded;  // room for the folded text, kept between calls
};

/// Passes the photos in whose file name, caption, people, subjects, event or place one of the words occurs.
class CTextFilter : public CPhotoFilter {
 public:
  /// `text` without blanks at its ends, and not empty.
  explicit CTextFilter(std::string text);

  bool Matches(const CAssetRecord& record) const override;

  /// Reads the annotations anew.
  void Refresh() override;

  const std::string& GetText() const { return Text; }

 private:
  const std::string Text;
  const CTextMatcher Matcher;
  CAssetIdSet HitAssets;  // photos with a stamp that hits
};
