#pragma once

#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include "ui/controls/PaintedButton.h"

/// A rating above 0 in words: "3 stars".
std::string GetStarsText(int count);

/// What keeps the rating that the control shows.
class CRatingOwner {
 public:
  virtual ~CRatingOwner() = default;
  /// 0 to 4; 0 with no photo.
  virtual int GetRating() const = 0;
  virtual void SetRating(int rating) = 0;
  /// Stores what SetRating gave, and calls the control's Refresh.
  virtual void Commit() = 0;
};

/// The row of four stars. A click on a star gives the photo as many stars; a click on its last one takes
/// that away; with the focus, Left takes a star away and Right adds one. The rating itself is the owner's,
/// which outlives the control.
class CRatingControl : public QWidget, public CFaceMaker, private CCommandTarget {
 public:
  static constexpr int kStars = 4;
  static constexpr QSize kSize{84, 21};

  CRatingControl(CRatingOwner& owner, QWidget* parent);

  /// Called before a key changes the rating.
  std::function<void()> OnKeyRating;

  /// Shows that many filled stars from the left, the others empty.
  void SetStars(int count);

  /// Shows the owner's rating.
  void Refresh();

  // For assistive tools, which are told of a slider and not of its buttons.
  int GetShownStars() const { return ShownStars; }
  void Rate(int rating);
  QAccessibleInterface* MakeFace() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void OnCommand(CommandId id) override;

  CRatingOwner& Owner;
  std::array<std::unique_ptr<CPaintedButton>, kStars> Stars;
  int ShownStars = 0;
};
