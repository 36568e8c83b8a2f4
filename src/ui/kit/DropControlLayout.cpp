#include "ui/kit/DropControlLayout.h"

#include <algorithm>

#include "ui/kit/DevicePainter.h"

namespace {

constexpr int kImageWidth = 40;
constexpr int kImageHeight = 22;
constexpr int kLeftPiece = 9;
constexpr int kRightPiece = 30;

constexpr int kTextLeft = 9;
constexpr int kTextTop = 2;
constexpr int kTextRight = 31;
constexpr int kTextBottom = 5;
constexpr int kOpenOffset = 2;

constexpr int kAroundLine = 2;
constexpr int kAroundRow = 5;

}  // namespace

DropSkinPieces CutDropSkin(int image) {
  const int left = image * kImageWidth;
  return {QRect(left, 0, kLeftPiece, kImageHeight), QRect(left + kLeftPiece, 0, 1, kImageHeight),
          QRect(left + kImageWidth - kRightPiece, 0, kRightPiece, kImageHeight)};
}

DropSkinPieces LayOutDropSkin(QSize size, double pixelRatio) {
  const int left = std::min(ToDevicePixels(kLeftPiece, pixelRatio), size.width());
  const int right = std::min(ToDevicePixels(kRightPiece, pixelRatio), size.width() - left);
  const int middle = size.width() - left - right;
  return {QRect(0, 0, left, size.height()), QRect(left, 0, middle, size.height()),
          QRect(left + middle, 0, right, size.height())};
}

QRect GetDropTextArea(QSize control, bool listOpen) {
  const QRect area = QRect(QPoint(), control).adjusted(kTextLeft, kTextTop, -kTextRight, -kTextBottom);
  return listOpen ? area.translated(kOpenOffset, kOpenOffset) : area;
}

int GetDropRowHeight(int lineHeight) { return lineHeight + kAroundLine; }

int GetDropControlHeight(int lineHeight) { return GetDropRowHeight(lineHeight) + kAroundRow; }
