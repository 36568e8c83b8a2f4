#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <optional>

#include "catalog/AssetRecord.h"
#include "ui/kit/RatingControl.h"

/// The panel on which the user reads and edits what is known about the current photo. It holds no annotation
/// of its own: a value is in the catalog as soon as it was given.
class CPhotoBack : public QWidget, public CRatingOwner {
 public:
  explicit CPhotoBack(QWidget* parent = nullptr);
  ~CPhotoBack() override;

  /// Called after a stamp of the current photo has been written.
  std::function<void(StampId type)> OnStampChanged;

  /// Shows that photo's fields; none hides them.
  void SetPhoto(const std::optional<CAssetRecord>& photo);

  /// Rates the current photo, 0 to 4. Without one nothing happens.
  void SetRating(int value) override;
  int GetRating() const override;
  void Commit() override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<CAssetRecord> Photo;
  std::unique_ptr<CRatingControl> RatingControl;
};
