#include <QMouseEvent>

#include "FilmstripFixture.h"
#include "ui/kit/PaintedButton.h"

namespace {

class CFilmstripMouse : public CFilmstripFixture {
 protected:
  void Click(QPoint point, Qt::KeyboardModifiers keys = Qt::NoModifier,
             Qt::MouseButton button = Qt::LeftButton) {
    QTest::mousePress(&Strip, button, keys, point);
    QTest::mouseRelease(&Strip, button, keys, point);
  }

  static void Point(QWidget& widget, QPoint point, Qt::MouseButtons held = Qt::NoButton) {
    QMouseEvent move(QEvent::MouseMove, point, widget.mapToGlobal(point), Qt::NoButton, held, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &move);
  }

  static void Leave(QWidget& widget) {
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&widget, &leave);
  }
};

}  // namespace

TEST_F(CFilmstripMouse, ClickOnACellSlidesItUnderTheLens) {
  Begin(30, 10);
  Click(CellPoint(0));
  Click(CellPoint(2), Qt::NoModifier, Qt::RightButton);
  Click(CellPoint(2), Qt::NoModifier, Qt::MiddleButton);
  Click(QPoint(CellPoint(2).x(), 118));  // its label
  Strip.StartSlideShow();
  Strip.MoveTo(10);
  Host.Shown.clear();
  Click(CellPoint(2));
  EXPECT_FALSE(Strip.IsSlideShowRunning());
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Host.Shown, std::vector{IdAt(12)});
  Click(CellPoint(-3));
  ASSERT_TRUE(WaitForPhoto(2));
  EXPECT_EQ(Host.Shown.back(), IdAt(9));
}

TEST_F(CFilmstripMouse, PlacesBesideTheSetDoNothing) {
  Begin(3, 0);
  Click(CellPoint(-2));
  Click(CellPoint(3));
  Click(MarkPoint(3, 0));
  Point(Strip, MarkPoint(3, 0));
  QTest::qWait(100);
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
  EXPECT_TRUE(Host.Shown.empty());
  EXPECT_TRUE(Host.Toggled.empty());
}

TEST_F(CFilmstripMouse, ClickOnAMarkTogglesItInItsTab) {
  Begin(30, 10);
  const QImage before = Painted(Strip);
  Click(MarkPoint(0, 0));
  Click(MarkPoint(-2, 1), Qt::ShiftModifier);
  using Toggle = CNotingHost::Toggle;
  EXPECT_EQ(Host.Toggled, (std::vector{Toggle{IdAt(10), ViewTabId::Upload, false},
                                       Toggle{IdAt(8), ViewTabId::Email, true}}));
  EXPECT_EQ(Strip.GetCurrentIndex(), 10);
  EXPECT_NE(Painted(Strip), before) << "the marks show it at once";
}

TEST_F(CFilmstripMouse, MarkUnderThePointerLightsUp) {
  Begin(30, 10);
  const QImage plain = Painted(Strip);
  Point(Strip, MarkPoint(1, 0));
  const QImage first = Painted(Strip);
  EXPECT_NE(first, plain);
  Point(Strip, MarkPoint(1, 1));
  EXPECT_NE(Painted(Strip), first);
  Point(Strip, CellPoint(1));
  EXPECT_EQ(Painted(Strip), plain);
  Point(Strip, MarkPoint(1, 0));
  Leave(Strip);
  EXPECT_EQ(Painted(Strip), plain);
  Point(Strip, MarkPoint(1, 0), Qt::LeftButton);
  EXPECT_EQ(Painted(Strip), plain) << "the button went down elsewhere";
  Point(Strip, MarkPoint(1, 0));
  Strip.MoveBy(1);
  Strip.MoveBy(-1);
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Painted(Strip), plain);
}

TEST_F(CFilmstripMouse, DoubleClickUnderTheLensOpensThePhoto) {
  Begin(30, 10);
  QTest::mouseDClick(&Strip, Qt::LeftButton, Qt::NoModifier, QPoint(CellPoint(0).x(), 118));
  QTest::mouseDClick(&Strip, Qt::RightButton, Qt::NoModifier, CellPoint(0));
  EXPECT_TRUE(Host.Selected.empty());
  QTest::mouseDClick(&Strip, Qt::LeftButton, Qt::NoModifier, CellPoint(0));
  EXPECT_EQ(Host.Selected, std::vector{ViewTabId::CurrentPhoto});
  Click(CellPoint(1));
  QTest::mouseDClick(&Strip, Qt::LeftButton, Qt::NoModifier, CellPoint(1));
  ASSERT_TRUE(WaitForPhoto());
  QTest::qWait(2 * kSlideTime);
  EXPECT_EQ(Strip.GetCurrentIndex(), 11) << "one move";
  Click(MarkPoint(0, 0));
  QTest::mouseDClick(&Strip, Qt::LeftButton, Qt::NoModifier, MarkPoint(0, 0));
  EXPECT_EQ(Host.Toggled.size(), 2U);
}

TEST_F(CFilmstripMouse, LensStandsAroundTheMiddleCellAndItsButtonsCommand) {
  Begin(30, 1);
  const QPoint corner = Strip.GetLayout().GetCellFrame(3).topLeft() + Strip.pos();
  EXPECT_EQ(Strip.geometry(), QRect(0, 1, 1000, 128));
  EXPECT_EQ(Find("LensTop").geometry(), QRect(corner - QPoint(4, 4), QSize(153, 4)));
  EXPECT_EQ(Find("LensLeft").geometry(), QRect(corner - QPoint(4, 0), QSize(4, 122)));
  EXPECT_EQ(Find("LensRight").geometry(), QRect(corner + QPoint(145, 0), QSize(4, 122)));
  EXPECT_EQ(Find("LensBottom").geometry(), QRect(corner + QPoint(-4, 122), QSize(153, 27)));

  QList<CPaintedButton*> buttons = Find("LensBottom").findChildren<CPaintedButton*>();
  std::sort(buttons.begin(), buttons.end(), [](auto* left, auto* right) { return left->x() < right->x(); });
  ASSERT_EQ(buttons.size(), 4);
  const QRect places[] = {{6, 4, 31, 19}, {45, 4, 31, 19}, {76, 4, 31, 19}, {116, 4, 31, 19}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(buttons[i]->geometry(), places[i]);
    QTest::mouseClick(buttons[i], Qt::LeftButton);
  }
  EXPECT_EQ(Host.Commands, (std::vector{CommandId::PreviousGroup, CommandId::PreviousPhoto,
                                        CommandId::NextPhoto, CommandId::NextGroup}));

  Host.OnMove = [this] { Strip.MoveBy(1); };
  Strip.MoveTo(10);
  for (int click = 0; click < 8; ++click) QTest::mouseClick(buttons[2], Qt::LeftButton);
  Strip.FinishMove();
  EXPECT_EQ(Strip.GetCurrentIndex(), 18) << "no quick click is lost";
  QTest::mousePress(buttons[2], Qt::LeftButton);
  QTest::qWait(500 + 3 * kSlideTime);
  QTest::mouseRelease(buttons[2], Qt::LeftButton);
  EXPECT_LE(Strip.GetCurrentIndex(), 18 + 4) << "a held one slides";
  Strip.MoveTo(1);

  // Through the lens one sees the cell.
  const QImage image = Painted(Window);
  EXPECT_NEAR(image.pixelColor(corner + QPoint(1, 1)).hue(), HueOf(1).hue(), 5);
  EXPECT_NE(image.pixelColor(corner + QPoint(-2, 60)), image.pixelColor(corner + QPoint(-8, 60)));
}

TEST_F(CFilmstripMouse, PressOnABarJumps) {
  Begin(101, 50);
  QWidget& left = Find("PushBarLeft");
  QWidget& right = Find("PushBarRight");
  Strip.StartSlideShow();
  Strip.MoveTo(50);
  QTest::mousePress(&right, Qt::LeftButton, Qt::NoModifier, {(right.width() - 12) / 4, 13});
  EXPECT_FALSE(Strip.IsSlideShowRunning());
  EXPECT_NEAR(Strip.GetCurrentIndex(), 76, 1);
  EXPECT_EQ(Host.Shown.back(), IdAt(Strip.GetCurrentIndex()));
  QTest::mousePress(&left, Qt::RightButton, Qt::NoModifier, {left.width() - 2, 13});
  QTest::mousePress(&left, Qt::LeftButton, Qt::NoModifier, {left.width() - 2, 1});
  EXPECT_NEAR(Strip.GetCurrentIndex(), 76, 1);
  Strip.MoveTo(0);
  QTest::mousePress(&right, Qt::LeftButton, Qt::NoModifier, {right.width() - 3, 13});
  EXPECT_EQ(Strip.GetCurrentIndex(), 100);
  QTest::mousePress(&left, Qt::LeftButton, Qt::NoModifier, {3, 13});
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
}

TEST_F(CFilmstripMouse, PointerOverABarShowsTheLabelOfThePhotoThere) {
  Begin(9);
  QWidget& bar = Find("PushBarRight");
  QWidget& tip = Find("PushBarTip");
  Point(bar, {bar.width() - 3, 13});
  EXPECT_TRUE(tip.isHidden()) << "photos in no order have no labels";
  Set->SetSort(SortKind::Folder, false);
  Set->Rebuild();
  Strip.Refresh(0);
  Point(bar, {bar.width() / 2, 13});
  EXPECT_FALSE(tip.isHidden());
  EXPECT_EQ(tip.y(), bar.y() - 15);
  EXPECT_EQ(tip.x(), bar.x() + bar.width() / 2);
  Point(bar, {bar.width() - 3, 13});
  EXPECT_LE(tip.geometry().right(), Window.width()) << "pushed inside";
  Point(bar, {bar.width() / 2, 1});
  EXPECT_TRUE(tip.isHidden());
  Point(bar, {bar.width() / 2, 13});
  Leave(bar);
  EXPECT_TRUE(tip.isHidden());
}
