#include <QFontMetricsF>

#include "ui/WindowTest.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/DropControlLayout.h"
#include "ui/kit/DropListLayout.h"
#include "ui/kit/DropText.h"
#include "ui/kit/PopupShadow.h"

TEST(DropListLayout, RowsStandBelowEachOtherWithinTheFrame) {
  const DropListLayout layout{3, 17, 100};
  EXPECT_EQ(layout.GetSize(), QSize(100, 53));
  EXPECT_EQ(layout.GetRow(2), QRect(1, 35, 98, 17));
  EXPECT_EQ(layout.FindRow({50, 0}), -1) << "the frame";
  EXPECT_EQ(layout.FindRow({50, 1}), 0);
  EXPECT_EQ(layout.FindRow({50, 17}), 0);
  EXPECT_EQ(layout.FindRow({50, 18}), 1);
  EXPECT_EQ(layout.FindRow({50, 52}), -1);
  EXPECT_EQ(layout.FindRow({0, 20}), -1);
  EXPECT_EQ(layout.FindRow({99, 20}), -1);
  EXPECT_EQ(layout.FindRow({50, -5}), -1);
}

TEST(DropListLayout, WidthFollowsTextsAndControlWithinLimits) {
  EXPECT_EQ(GetDropListWidth(10, 179), 177);
  EXPECT_GT(GetDropListWidth(200.5, 179), 210);
  EXPECT_EQ(GetDropListWidth(5000, 179), GetDropListWidth(6000, 179));
  EXPECT_LT(GetDropListWidth(5000, 179), 500);
}

TEST(DropListLayout, ListOpensBelowElseAboveAndAlwaysOnTheScreen) {
  const QRect screen(0, 0, 1280, 900);
  const QSize list(196, 189);
  EXPECT_EQ(PlaceDropList({1078, 643, 179, 22}, list, screen), QRect(1078, 665, 196, 189));
  EXPECT_EQ(PlaceDropList({1078, 689, 179, 22}, list, screen), QRect(1078, 711, 196, 189))
      << "the last place below";
  EXPECT_EQ(PlaceDropList({1078, 712, 179, 22}, list, screen), QRect(1078, 523, 196, 189)) << "above";
  EXPECT_EQ(PlaceDropList({1180, 100, 90, 22}, list, screen).right(), 1279);
  EXPECT_EQ(PlaceDropList({-30, 100, 90, 22}, list, screen).left(), 0);
  EXPECT_EQ(PlaceDropList({10, 20, 90, 22}, {100, 1000}, screen).top(), 0) << "higher than the screen";
  const QRect right(1280, 100, 1280, 900);
  EXPECT_EQ(PlaceDropList({1300, 950, 90, 22}, list, right), QRect(1300, 761, 196, 189)) << "another screen";
}

TEST(DropListLayout, ArrowKeysGoRound) {
  EXPECT_EQ(StepRow(-1, 1, 5), 0);
  EXPECT_EQ(StepRow(-1, -1, 5), 4);
  EXPECT_EQ(StepRow(4, 1, 5), 0);
  EXPECT_EQ(StepRow(0, -1, 5), 4);
  EXPECT_EQ(StepRow(-1, 1, 0), -1);
}

TEST(DropControlLayout, PictureIsCutAndStretchedWithoutGaps) {
  EXPECT_EQ(GetDropControlHeight(15), 22);
  const DropSkinPieces open = CutDropSkin(3);
  EXPECT_EQ(open.Left, QRect(120, 0, 9, 22));
  EXPECT_EQ(open.Middle, QRect(129, 0, 1, 22));
  EXPECT_EQ(open.Right, QRect(130, 0, 30, 22));
  for (const double ratio : {1.0, 1.5, 2.0}) {
    const QSize size(ToDevicePixels(179, ratio), ToDevicePixels(22, ratio));
    const DropSkinPieces pieces = LayOutDropSkin(size, ratio);
    EXPECT_EQ(pieces.Middle.left(), pieces.Left.right() + 1);
    EXPECT_EQ(pieces.Right.left(), pieces.Middle.right() + 1);
    EXPECT_EQ(pieces.Right.right(), size.width() - 1);
    EXPECT_EQ(pieces.Right.width(), 30 * ratio);
  }
  EXPECT_EQ(GetDropTextArea({179, 22}, false), QRect(9, 2, 139, 15));
  EXPECT_EQ(GetDropTextArea({179, 22}, true), QRect(11, 4, 139, 15));
}

TEST(PopupShadow, FallsToTheLowerRightAndStaysOverItsWindow) {
  const QRectF list(0, 0, 200, 100);
  const auto strength = [&list](double x, double y) { return GetPopupShadowStrength({x, y}, list); };
  EXPECT_NEAR(strength(100, 50), 0.45, 0.001);
  EXPECT_NEAR(strength(202, 50), 0.225, 0.001) << "half on its edge";
  EXPECT_GT(strength(203, 50), strength(-3, 50)) << "the light comes from the left";
  EXPECT_GT(strength(100, 104), strength(100, 106));
  EXPECT_LT(strength(215, 50), 0.01);
  const QRect window(0, 0, 400, 300);
  EXPECT_EQ(GetPopupShadowRoom({10, 10, 200, 100}, window), QSize(9, 9));
  EXPECT_EQ(GetPopupShadowRoom({196, 10, 200, 100}, window), QSize(4, 9));
  EXPECT_EQ(GetPopupShadowRoom({10, 250, 200, 100}, window), QSize(0, 0));
}

TEST(DropText, CharactersBelowBlankAtTheEndsAreImages) {
  const DropText text = SplitDropText("\x01\x02 a\nb \x03");
  EXPECT_EQ(text.Before, (std::vector<int>{1, 2}));
  EXPECT_EQ(text.Text, " a\nb ");
  EXPECT_EQ(text.After, std::vector<int>{3});
  const DropText stars = SplitDropText("\x01\x01");
  EXPECT_EQ(stars.Before.size(), 2u);
  EXPECT_TRUE(stars.Text.isEmpty() && stars.After.empty());
  EXPECT_TRUE(SplitDropText("").Before.empty());
}

TEST(DropText, PathLosesItsMiddleAndKeepsItsName) {
  const CFontTable fonts(false);
  const QFontMetricsF metrics(GetFont(FontId::Panel));
  const QString path = "/home/anna/A long name/another one below it/Scans";
  EXPECT_EQ(ShortenPath(path, metrics.horizontalAdvance(path), metrics), path);
  for (const double width : {70.0, 100.0, 150.0}) {
    const QString shortened = ShortenPath(path, width, metrics);
    EXPECT_LE(metrics.horizontalAdvance(shortened), width);
    EXPECT_TRUE(shortened.endsWith(QStringLiteral("\u2026/Scans"))) << qPrintable(shortened);
    const QString start = shortened.section(QChar(0x2026), 0, 0);
    EXPECT_TRUE(path.startsWith(start));
    EXPECT_GT(metrics.horizontalAdvance(path.left(start.size() + 1) + QStringLiteral("\u2026/Scans")), width);
  }
  const QString narrow = ShortenPath(path, 30, metrics);
  EXPECT_LE(metrics.horizontalAdvance(narrow), 30);
  EXPECT_TRUE(narrow.contains(QChar(0x2026)));
}
