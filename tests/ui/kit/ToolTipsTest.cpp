#include <QEnterEvent>
#include <QFontMetricsF>
#include <QTextDocument>
#include <QToolTip>

#include "ui/WindowTest.h"
#include "ui/kit/ToolTips.h"

TEST(ToolTips, TextIsSplitAtItsFirstLineFeed) {
  const auto email = SplitCaptionAndTip("Email Photo\nPut photo in Email tab\nShortcut key: M");
  EXPECT_EQ(email.Caption, "Email Photo");
  EXPECT_EQ(email.Tip, "Put photo in Email tab\nShortcut key: M");
  const auto restore = SplitCaptionAndTip("Restore");
  EXPECT_EQ(restore.Caption, "Restore");
  EXPECT_TRUE(restore.Tip.isEmpty());
  EXPECT_TRUE(LoadCaptionAndTip(StringId::RatePhoto).Caption.isEmpty());
  EXPECT_EQ(SplitCaptionAndTip("c\n" + QString(100, u'x')).Tip.size(), 80);
}

TEST(ToolTips, LinesAreBrokenAtTheWidth) {
  const CFontTable fonts(false);
  const QFont& font = GetFont(FontId::Note);
  const QString text = "Upload all the photos in this tab to a Quillara online album\nand a second line";
  const QStringList lines = WrapToolTip(text, font, 150).split(u'\n');
  EXPECT_GE(lines.size(), 4);
  EXPECT_EQ(lines.last(), "and a second line");
  for (const QString& line : lines) EXPECT_LE(QFontMetricsF(font).horizontalAdvance(line), 150);
  EXPECT_EQ(QStringList(lines.mid(0, lines.size() - 1)).join(u' ') + u'\n' + lines.last(), text);
  EXPECT_EQ(WrapToolTip("Averylongwordwithoutablank", font, 20), "Averylongwordwithoutablank");
}

TEST(ToolTips, MarkupIsShownAsItStands) {
  const CFontTable fonts(false);
  QWidget widget;
  const QString text = "<b>Photos</b> & more\nsecond";
  SetToolTip(widget, text);
  ASSERT_TRUE(Qt::mightBeRichText(widget.toolTip()));
  QTextDocument shown;
  shown.setHtml(widget.toolTip());
  EXPECT_EQ(shown.toPlainText(), text);
  SetToolTip(widget, {});
  EXPECT_TRUE(widget.toolTip().isEmpty());
}

TEST(ToolTips, NeighboursThatShareAnAreaKeepTheTip) {
  const CFontTable fonts(false);
  QWidget window;
  QWidget first(&window);
  QWidget second(&window);
  window.resize(200, 100);
  first.setGeometry(0, 0, 100, 100);
  second.setGeometry(100, 0, 100, 100);
  SetToolTip(first, "one");
  SetToolTip(second, "two");
  ShareToolTipArea(first, second);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window)) << "activation takes tips away";
  const auto enter = [](QWidget& widget) {
    QEnterEvent event(QPointF(5, 5), QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)));
    QCoreApplication::sendEvent(&widget, &event);
  };
  enter(second);
  EXPECT_FALSE(QToolTip::isVisible()) << "entering alone shows nothing";
  QToolTip::showText(first.mapToGlobal(QPoint(5, 5)), first.toolTip(), &first);
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&first, &leave);
  enter(second);
  QTest::qWait(400);  // a tip that was left goes after 300 ms
  EXPECT_TRUE(QToolTip::isVisible());
  EXPECT_EQ(QToolTip::text(), "two");
  QToolTip::hideText();
}

TEST(ToolTips, TipGoesWhenItsTextOrItsWidgetGoes) {
  const CFontTable fonts(false);
  QWidget widget;
  SetToolTip(widget, "one");
  widget.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&widget));
  const auto show = [&] { QToolTip::showText(QPoint(5, 5), widget.toolTip(), &widget); };
  const auto isGone = [] { return QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 1000); };
  show();
  SetToolTip(widget, "one");
  HideToolTip(QWidget());
  EXPECT_FALSE(isGone()) << "nothing has changed for it";
  SetToolTip(widget, "two");
  EXPECT_TRUE(isGone());
  show();
  HideToolTip(widget);
  EXPECT_TRUE(isGone());
}
