#pragma once

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
