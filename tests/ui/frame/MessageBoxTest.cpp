#include <QMessageBox>
#include <QPushButton>

#include "ui/WindowTest.h"
#include "ui/kit/MessageBox.h"
#include "ui/search/SearchProgressWindow.h"

namespace {

/// Shows a box, lets `look` see it and end it, and returns its answer.
bool Answer(bool okCancel, const std::function<void(QMessageBox&)>& look,
            MessageParent parent = MessageParent::MainWindow, const std::string& text = "A text") {
  CWindowMessageBox messages;
  bool seen = false;
  When([] { return QApplication::activeModalWidget() != nullptr; },
       [&] {
         seen = true;
         look(*qobject_cast<QMessageBox*>(QApplication::activeModalWidget()));
       });
  const bool answer = messages.Show("A title", text, okCancel, parent);
  EXPECT_TRUE(seen);
  return answer;
}

}  // namespace

TEST(MessageBox, PlainMessageHasOneButtonAndNoIcon) {
  EXPECT_TRUE(Answer(false, [](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), "A title");
    EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
    EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
    EXPECT_EQ(box.parentWidget(), nullptr);
    box.close();
  }));
}

TEST(MessageBox, QuestionIsRefusedByEveryWayButItsButton) {
  EXPECT_TRUE(Answer(true, [](QMessageBox& box) {
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::Cancel));
    box.button(QMessageBox::Ok)->click();
  }));
  EXPECT_FALSE(Answer(true, [](QMessageBox& box) { box.close(); }));
  EXPECT_FALSE(Answer(true, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }));
}

TEST(MessageBox, TextIsNeverTakenForMarkup) {
  Answer(
      false,
      [](QMessageBox& box) {
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.text(), QString::fromUtf8("<b>/photos/\u00e9 \uFFFD.jpg</b>"));
        box.close();
      },
      MessageParent::MainWindow, "<b>/photos/\xC3\xA9 \xFF.jpg</b>");
}

TEST(MessageBox, StandsOnTheProgressWindowWhileThatShows) {
  const CFontTable fonts(false);
  CSearchProgressWindow progress(false);
  EXPECT_EQ(FindMessageParent(MessageParent::ProgressWindow), nullptr) << "there, but hidden";
  progress.show();
  EXPECT_EQ(FindMessageParent(MessageParent::ProgressWindow), &progress);
  EXPECT_EQ(FindMessageParent(MessageParent::MainWindow), nullptr);
}
