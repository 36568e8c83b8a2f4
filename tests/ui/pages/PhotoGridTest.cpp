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
