#include <QTextDocument>

#include "ui/WindowTest.h"
#include "ui/kit/ToolTips.h"

TEST(ToolTips, TextIsSplitWrappedAndShownAsItStands) {
  const CFontTable fonts(false);
  const auto email = SplitCaptionAndTip("Email Photo\nPut photo in Email tab\nShortcut key: M");
  EXPECT_EQ(email.Caption, "Email Photo");
  EXPECT_EQ(email.Tip, "Put photo in Email tab\nShortcut key: M");
  EXPECT_EQ(WrapToolTip("one two\nthree Averylongwordwithoutablank", GetFont(FontId::Note), 50),
            "one two\nthree\nAverylongwordwithoutablank");
  QWidget widget;
  SetToolTip(widget, "<b>Photos</b> & more\nsecond");
  QTextDocument shown;
  shown.setHtml(widget.toolTip());
  EXPECT_EQ(shown.toPlainText(), "<b>Photos</b> & more\nsecond") << "no markup";
}
