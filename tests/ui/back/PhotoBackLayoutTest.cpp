#include "ui/WindowTest.h"
#include "ui/back/FormatLine.h"
#include "ui/back/PhotoBackLayout.h"
#include "ui/back/TextShortening.h"

namespace {

constexpr PhotoBackMetrics kMetrics{15, 14, 21};

QRect Place(const PhotoBackLayout& layout, FieldRow row) {
  return layout.Fields[static_cast<std::size_t>(row)];
}

}  // namespace

TEST(PhotoBackLayoutTest, RoomGoesToLinesThenToGaps) {
  // The fields alone take 21 + 2 * (20 + 3 * 21) = 187.
  EXPECT_EQ(DivideRoom(187 + 19, kMetrics), (FieldRoom{1, 1, 9, 0}));
  EXPECT_EQ(DivideRoom(187 + 20, kMetrics), (FieldRoom{1, 1, 10, 0}));
  EXPECT_EQ(DivideRoom(187 + 20 + 20, kMetrics), (FieldRoom{1, 1, 10, 10}));
  EXPECT_EQ(DivideRoom(187 + 20 + 21, kMetrics), (FieldRoom{1, 2, 10, 0}));
  EXPECT_EQ(DivideRoom(187 + 20 + 42, kMetrics), (FieldRoom{2, 2, 10, 0}));
  EXPECT_EQ(DivideRoom(187 + 20 + 63, kMetrics), (FieldRoom{2, 3, 10, 0}));
  EXPECT_EQ(DivideRoom(187 + 20 + 63 + 31, kMetrics), (FieldRoom{2, 3, 10, 15}));
  EXPECT_EQ(DivideRoom(187 + 20 + 63 + 200, kMetrics), (FieldRoom{2, 3, 10, 20}));
  EXPECT_EQ(DivideRoom(100, kMetrics).OuterMargin, -43);
}

TEST(PhotoBackLayoutTest, RowsFollowOneAnotherAboveTheFilterBar) {
  const PhotoBackLayout layout = LayOutPhotoBack({267, 705}, 104, kMetrics);
  EXPECT_EQ(Place(layout, FieldRow::Rating), QRect(23, 21, 224, 21));
  EXPECT_EQ(Place(layout, FieldRow::Title), QRect(23, 47, 224, 36));
  EXPECT_EQ(Place(layout, FieldRow::Caption), QRect(23, 103, 224, 51));
  EXPECT_EQ(Place(layout, FieldRow::Subjects), QRect(23, 154, 224, 21));
  EXPECT_EQ(Place(layout, FieldRow::Date), QRect(23, 217, 224, 21));
  EXPECT_EQ(Place(layout, FieldRow::Folder), QRect(23, 258, 224, 20));
  EXPECT_EQ(Place(layout, FieldRow::Format), QRect(23, 278, 224, 20));
  EXPECT_EQ(layout.FilterBar, QRect(10, 601, 245, 104));

  // The smallest main window, with its usual letters and with those of a small screen.
  const PhotoBackLayout least = LayOutPhotoBack({267, 405}, 104, kMetrics);
  EXPECT_EQ(least.Room, (FieldRoom{2, 3, 10, 5}));
  EXPECT_LT(Place(least, FieldRow::Format).bottom(), least.FilterBar.top());
  const PhotoBackLayout small = LayOutPhotoBack({267, 355}, 104, {13, 12, 21});
  EXPECT_LT(Place(small, FieldRow::Format).bottom(), small.FilterBar.top());
}

TEST(PhotoBackLayoutTest, TheButtonStandsBehindTheText) {
  EXPECT_EQ(LayOutField({224, 21}, 54, {}).Value, QRect(54, 0, 170, 21));
  const FieldLayout layout = LayOutField({224, 21}, 54, {14, 14});
  EXPECT_EQ(layout.Button, QRect(209, 3, 14, 14));
  EXPECT_EQ(layout.Value, QRect(54, 0, 153, 21));
}

TEST(TextShorteningTest, PathsLoseTheirMiddleAndOtherTextsTheirEnd) {
  const CFontTable fonts(false);
  const QFontMetricsF metrics(GetFont(FontId::Caption));
  const QString path = QStringLiteral("/home/anna/Pictures/Holidays/Lakes in August");
  const auto widthOf = [&](const char* text) {
    return metrics.horizontalAdvance(QString::fromUtf8(text)) + 1;
  };
  EXPECT_EQ(ShortenLine(path, true, metrics, 1000), path);
  EXPECT_EQ(ShortenLine(path, true, metrics, widthOf("/home/anna/…/Lakes in August")),
            QString::fromUtf8("/home/anna/…/Lakes in August"));
  EXPECT_EQ(ShortenLine(path, true, metrics, widthOf("…/Lakes in August")),
            QString::fromUtf8("/…/Lakes in August").mid(1));
  EXPECT_TRUE(ShortenLine(path, false, metrics, 100).startsWith(QStringLiteral("/home/anna")));
  for (int width = 0; width < 200; ++width) {
    const QString line = ShortenLine(path, true, metrics, width);
    EXPECT_TRUE(line.size() <= 1 || metrics.horizontalAdvance(line) <= width + 1) << width;
  }
}

TEST(TextShorteningTest, TextsBreakAtWordsAndLongWordsAnywhere) {
  const CFontTable fonts(false);
  const QFont& font = GetFont(FontId::Label);
  const QFontMetricsF metrics(font);
  EXPECT_EQ(BreakIntoLines(QStringLiteral("one two"), font, 1000, 3), QStringList{QStringLiteral("one two")});
  EXPECT_EQ(BreakIntoLines(QString(), font, 100, 3).join(QString()), QString());
  EXPECT_EQ(BreakIntoLines(QStringLiteral("one\r\ntwo"), font, 1000, 3),
            (QStringList{QStringLiteral("one"), QStringLiteral("two")}));

  const QString text =
      QStringLiteral("Last light over the lake, ") + QString(60, u'w') + QStringLiteral(" end");
  const QStringList all = BreakIntoLines(text, font, 160, 20);
  EXPECT_EQ(all.join(QString()), text);
  const QStringList three = BreakIntoLines(text, font, 160, 3);
  ASSERT_EQ(three.size(), 3);
  EXPECT_EQ(three[0], all[0]);
  EXPECT_TRUE(three[2].endsWith(QChar(0x2026))) << three[2].toStdString();
  for (const QString& line : three) EXPECT_LE(metrics.horizontalAdvance(line.trimmed()), 160.5);
}

TEST(FormatLineTest, SizesOfFilesAreInKilobytesBelowAThousand) {
  EXPECT_EQ(MakeFormatLine({2560, 1600}, 617 * 1024 + 1023), "2560 x 1600 (617 KB)");
  EXPECT_EQ(MakeFormatLine({0, 0}, 0), "0 x 0 (0 KB)");
  EXPECT_EQ(MakeFormatLine({1, 2}, 999 * 1024), "1 x 2 (999 KB)");
  EXPECT_EQ(MakeFormatLine({1, 2}, 1000 * 1024), "1 x 2 (0.98 MB)");
  EXPECT_EQ(MakeFormatLine({1, 2}, 5ULL * 1024 * 1024 * 1024), "1 x 2 (5120.00 MB)");
  EXPECT_EQ(ReadFormatLine({1, 2}, "/nowhere/at/all"), "1 x 2 (0 KB)");
}
