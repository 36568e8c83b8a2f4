#include <gtest/gtest.h>

#include "ui/pages/PhotoGrid.h"

TEST(PhotoGrid, AllPhotosFindRoomOnAnyPage) {
  // Width of the page, photos and columns.
  const int rows[][3] = {{978, 30, 6}, {978, 31, 7}, {978, 500, 25}, {152, 1, 1}, {20, 1, 1}};
  for (const auto& [width, photos, columns] : rows) {
    const QSize page(width, 650);
    const PhotoGrid grid = FitPhotoGrid(page, photos);
    EXPECT_EQ(grid.Columns, columns) << photos << " on " << width;
    EXPECT_TRUE(QRect(QPoint(), page).contains(grid.GetFrame(photos - 1)));
    const QPoint corner = grid.GetCell(photos - 1).bottomRight();
    EXPECT_EQ(grid.FindCellAt(corner, photos), photos - 1);
    EXPECT_EQ(grid.FindCellAt(corner, photos - 1), -1);
    EXPECT_EQ(grid.FindCellAt(corner + QPoint(1, 0), photos), -1) << "between the cells";
  }
  for (const QSize page : {QSize(5, 5), {978, 650}}) {
    EXPECT_EQ(FitPhotoGrid(page, 1'000'000).Cell, QSize(4, 3)) << "no smaller, though not all find room";
  }
  EXPECT_EQ(FitPhotoGrid({0, 400}, 1).Columns, 0);
}

TEST(PhotoGrid, MovesEndAtTheFirstAndTheLastPhoto) {
  // Ten photos in rows of four: from one of them to the left, to the right, up and down.
  const int rows[][5] = {{-1, -1, 0, 0, 3}, {0, 0, 1, 0, 4}, {5, 4, 6, 1, 9}, {9, 8, 9, 5, 9}};
  for (const auto& row : rows) {
    const int* next = row;
    for (const GridMove move : {GridMove::Left, GridMove::Right, GridMove::Up, GridMove::Down}) {
      EXPECT_EQ(MoveInGrid(move, row[0], 4, 10), *++next);
    }
  }
}
