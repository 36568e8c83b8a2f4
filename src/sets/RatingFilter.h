#pragma once

#include <cstdint>
#include <string>

#include "sets/PhotoFilter.h"

/// The choices of the rating control.
enum class RatingFilterCode : int {
  FourStars = 100,
  ThreeStars = 101,
  TwoStars = 102,
  OneStar = 103,
  NoRating = 104,
  ThreeOrBetter = 105,
  TwoOrBetter = 106,
  OneOrBetter = 107,
  Any = 108,  // no filter
};

/// The code's text, in which the character 1 stands for a star; empty for an unknown code.
std::string GetRatingFilterText(RatingFilterCode code);

/// Passes the photos whose rating lies in a range.
class CRatingFilter : public CPhotoFilter {
 public:
  /// An unknown code lets every rating pass.
  explicit CRatingFilter(RatingFilterCode code);
  bool Matches(const CAssetRecord& record) const override;

 private:
  std::int32_t Minimum = 0, Maximum = 4;  // both included
};
