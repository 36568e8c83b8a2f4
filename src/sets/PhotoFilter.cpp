#include "sets/PhotoFilter.h"

#include <algorithm>
#include <array>

#include "base/Texts.h"
#include "catalog/AssetRecord.h"

namespace {

struct RatingChoice {
  RatingFilterCode Code;
  StringId Text;
  std::int32_t Minimum, Maximum;
};

constexpr std::array kChoices{
    RatingChoice{RatingFilterCode::FourStars, StringId::RatedFourStars, 4, 4},
    RatingChoice{RatingFilterCode::ThreeStars, StringId::RatedThreeStarsOnly, 3, 3},
    RatingChoice{RatingFilterCode::TwoStars, StringId::RatedTwoStarsOnly, 2, 2},
    RatingChoice{RatingFilterCode::OneStar, StringId::RatedOneStarOnly, 1, 1},
    RatingChoice{RatingFilterCode::NoRating, StringId::RatedNoRating, 0, 0},
    RatingChoice{RatingFilterCode::ThreeOrBetter, StringId::RatedThreeStarsOrBetter, 3, 4},
    RatingChoice{RatingFilterCode::TwoOrBetter, StringId::RatedTwoStarsOrBetter, 2, 4},
    RatingChoice{RatingFilterCode::OneOrBetter, StringId::RatedOneStarOrBetter, 1, 4},
    RatingChoice{RatingFilterCode::Any, StringId::RatedAny, 0, 4},
};

const RatingChoice* FindChoice(RatingFilterCode code) {
  const auto* const choice = std::find_if(kChoices.begin(), kChoices.end(),
                                          [code](const RatingChoice& c) { return c.Code == code; });
  return choice != kChoices.end() ? choice : nullptr;
}

}  // namespace

std::string GetRatingFilterText(RatingFilterCode code) {
  const RatingChoice* const choice = FindChoice(code);
  return choice != nullptr ? LoadText(choice->Text) : "";
}

CRatingFilter::CRatingFilter(RatingFilterCode code) {
  if (const RatingChoice* const choice = FindChoice(code)) {
    Minimum = choice->Minimum;
    Maximum = choice->Maximum;
  }
}

bool CRatingFilter::Matches(const CAssetRecord& record) const {
  const std::int32_t rating = record.GetCachedRating();
  return rating >= Minimum && rating <= Maximum;
}

bool CRollFilter::Matches(const CAssetRecord& record) const {
  const std::int32_t roll = record.GetRollID();
  return (First == -1 || roll >= First) && (Last == -1 || roll <= Last);
}
