#pragma once

#include <cstdint>
#include <string>

class CAssetRecord;

/// A condition on photos. Base of the filters that a set can have; this one lets every photo pass.
class CPhotoFilter {
 public:
  CPhotoFilter() = default;
  virtual ~CPhotoFilter() = default;
  CPhotoFilter(const CPhotoFilter&) = delete;
  CPhotoFilter& operator=(const CPhotoFilter&) = delete;

  virtual bool Matches(const CAssetRecord&) const { return true; }

  /// Brings what the filter knows of the catalog up to date. Each rebuild of the set begins with it.
  virtual void Refresh() {}
};

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

/// Passes the photos of a range of rolls, both ends included; -1 leaves an end open.
class CRollFilter : public CPhotoFilter {
 public:
  CRollFilter(std::int32_t first, std::int32_t last) : First(first), Last(last) {}
  bool Matches(const CAssetRecord& record) const override;

 private:
  const std::int32_t First, Last;
};
