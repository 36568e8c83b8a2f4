#pragma once

#include <QWidget>
#include <array>
#include <functional>
#include <vector>

#include "ui/controls/PaintedButton.h"
#include "ui/kit/Commands.h"
#include "ui/kit/PaintedGroup.h"
#include "ui/strip/StripLayout.h"

/// A piece of the lens: a picture, transparent where it has no paint.
class CLensPiece : public QWidget {
 public:
  CLensPiece(LensPart part, QWidget& strip);

  void Place(const StripLayout& layout);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const LensPart Part;
  QWidget& Strip;
  QRect Area;  // device pixels, from the strip's corner
};

/// The square frame around the strip's middle cell, with the four buttons in its foot. The pieces are
/// siblings of the strip and stand above it.
class CLens : private CCommandTarget {
 public:
  /// A button was clicked or, with `isRepeat`, is being held.
  using Press = std::function<void(CommandId id, bool isRepeat)>;

  CLens(QWidget& strip, Press onPress);

  /// To be called when the strip has moved or has another width.
  void Place(const StripLayout& layout);
  void SetVisible(bool on);
  std::vector<GroupPart> ListButtons() const;

 private:
  void OnCommand(CommandId id) override;

  static constexpr int kPieces = 4;
  static constexpr int kButtons = 4;

  QWidget& Strip;
  const Press OnPress;
  std::array<CLensPiece, kPieces> Pieces;
  std::array<CPaintedButton, kButtons> Buttons;
};
