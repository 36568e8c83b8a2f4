#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// The grid of a page of photos: cells of one size in rows, as large as they can be for all of them to be on
/// view. Pixels of the layout, from the page's top left corner.
struct PhotoGrid {
  int Columns = 0;  // 0: a page without any size
  QSize Cell{0, 0};

  QRect GetCell(int index) const;
  /// What the frame around a selected cell covers.
  QRect GetFrame(int index) const;
  /// -1 if the point is in none of the first `count` cells.
  int FindCellAt(QPoint point, int count) const;

  friend bool operator==(const PhotoGrid&, const PhotoGrid&) = default;
};

inline constexpr int kGridGap = 4;  // between cells, and around them

/// Cells have a least size, so more than some ten thousand photos don't all find room: the last ones then lie
/// below the page.
PhotoGrid FitPhotoGrid(QSize page, int photos);

enum class GridMove { Left, Right, Up, Down };

/// Where a move of the selection leads among `count` cells, of which there is one at least; `selected` is -1
/// for none.
int MoveInGrid(GridMove move, int selected, int columns, int count);

/// The texts of an empty page, one below the other, in the middle of the page. The heights are those that
/// they take when their lines are as wide as GetHelpWidth() lets them be.
struct HelpPlaces {
  QRect First;
  QRect Second;
};
int GetHelpWidth(int pageWidth);
HelpPlaces PlaceHelp(QSize page, int firstHeight, int secondHeight);
