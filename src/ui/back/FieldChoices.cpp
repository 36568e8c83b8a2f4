#include "ui/back/FieldChoices.h"

#include <unordered_set>
#include <utility>

#include "base/Texts.h"
#include "platform/TextCompare.h"
#include "ui/back/TokenList.h"

namespace {

struct DateKind {
  StringId Text;
  StampId Source;
};
constexpr DateKind kDateKinds[] = {{StringId::CameraDate, StampId::CameraDate},
                                   {StringId::FileDate, StampId::FileCreateDate},
                                   {StringId::EditedDate, StampId::UserDate}};

std::vector<FieldChoice> ListDateKinds(const CFieldValue& value) {
  std::vector<FieldChoice> choices;
  for (const DateKind& kind : kDateKinds) {
    choices.push_back({LoadText(kind.Text), value.GetNumber() == static_cast<std::int32_t>(kind.Source),
                       value.GetDateFrom(kind.Source).has_value(), kind.Source});
  }
  return choices;
}

CTokenList TokensOf(const CFieldValue& value, const std::string& text) {
  if (value.IsMultiple()) return {text, GetListSeparators()};
  CTokenList whole({}, GetListSeparators());
  whole.Add(text);
  return whole;
}

}  // namespace

std::vector<FieldChoice> ListChoices(CFieldValue& value, const std::string& text) {
  if (value.GetKind() == FieldKind::Date) return ListDateKinds(value);
  const CTokenList tokens = TokensOf(value, text);
  std::unordered_set<std::string> present;
  for (const std::string& token : tokens.GetTokens()) present.insert(platform::FoldLetters(token));
  std::vector<FieldChoice> choices;
  for (std::string& choice : value.GetChoices()) {
    const bool isPresent = present.contains(platform::FoldLetters(choice));
    choices.push_back({std::move(choice), isPresent});
  }
  return choices;
}

std::string ApplyChoice(const CFieldValue& value, const std::string& text, const std::string& choice) {
  if (!value.IsMultiple()) return choice;
  CTokenList tokens(text, GetListSeparators());
  if (tokens.Contains(choice)) {
    tokens.Remove(choice);
  } else {
    tokens.Add(choice);
  }
  return tokens.GetText();
}

void ChooseDate(CFieldValue& value, StampId source) {
  const auto time = value.GetDateFrom(source);
  if (!time) return;
  value.SetDate(*time);
  value.SetNumber(static_cast<std::int32_t>(source));
}
