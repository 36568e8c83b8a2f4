#include <gtest/gtest.h>

#include "ui/pages/PhotoGrid.h"

TEST(PhotoGrid, AllPhotosFindRoomOnAnyPage) {
  struct Row {
    QSize Page;
    int Photos;
    int Columns;
    QSize Cell;
  };
  const Row rows[] = {
      {{978, 650}, 1, 6, {158, 118}},  {{978, 650}, 30, 6, {158, 118}}, {{978, 650}, 31, 7, {135, 101}},
      {{978, 650}, 500, 25, {34, 25}}, {{152, 400}, 1, 1, {144, 108}},  {{20, 400}, 1, 1, {12, 9}},
      {{5, 5}, 1, 1, {4, 3}},          {{0, 400}, 1, 0, {0, 0}},        {{978, 650}, 1'000'000, 121, {4, 3}},
  };
  for (const Row& row : rows) {
    const PhotoGrid grid = FitPhotoGrid(row.Page, row.Photos);
    EXPECT_EQ(grid, (PhotoGrid{row.Columns, row.Cell})) << row.Photos << " on " << row.Page.width();
    if (row.Photos > 500 || row.Page.width() < 20) continue;
    EXPECT_TRUE(QRect(QPoint(), row.Page).contains(grid.GetFrame(row.Photos - 1)));
    const QPoint corner = grid.GetCell(row.Photos - 1).bottomRight();
    EXPECT_EQ(grid.FindCellAt(corner, row.Photos), row.Photos - 1);
    EXPECT_EQ(grid.FindCellAt(corner, row.Photos - 1), -1);
    EXPECT_EQ(grid.FindCellAt(corner + QPoint(1, 0), row.Photos), -1) << "between the cells";
  }
}

TEST(PhotoGrid, MovesEndAtTheFirstAndTheLastPhoto) {
  struct Row {
    int From, Left, Right, Up, Down;
  };
  // Ten photos in rows of four.
  const Row rows[] = {{-1, -1, 0, 0, 3}, {0, 0, 1, 0, 4}, {5, 4, 6, 1, 9}, {9, 8, 9, 5, 9}};
  for (const Row& row : rows) {
    EXPECT_EQ(MoveInGrid(GridMove::Left, row.From, 4, 10), row.Left);
    EXPECT_EQ(MoveInGrid(GridMove::Right, row.From, 4, 10), row.Right);
    EXPECT_EQ(MoveInGrid(GridMove::Up, row.From, 4, 10), row.Up);
    EXPECT_EQ(MoveInGrid(GridMove::Down, row.From, 4, 10), row.Down);
  }
}
