#include <QMessageBox>
#include <QPushButton>

#include "ui/WindowTest.h"
#include "ui/kit/MessageBox.h"
#include "ui/search/SearchProgressWindow.h"

namespace {

/// Shows a box, lets `end` see it and end it, and returns its answer.
bool Answer(bool okCancel, const std::function<void(QMessageBox&)>& end) {
  CWindowMessageBox messages;
  WhenDialogShows([&](QWidget& dialog) { end(dynamic_cast<QMessageBox&>(dialog)); });
  return messages.Show("A title", "<b>\xFF.jpg</b>", okCancel, MessageParent::MainWindow);
}

}  // namespace

TEST(MessageBox, ShowsItsTextAsItIsAndTakesAnythingButTheButtonForARefusal) {
  EXPECT_TRUE(Answer(false, [](QMessageBox& box) {
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.text(), QString::fromUtf8("<b>\uFFFD.jpg</b>"));
    EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
    box.close();
  }));
  EXPECT_TRUE(Answer(true, [](QMessageBox& box) { box.button(QMessageBox::Ok)->click(); }));
  EXPECT_FALSE(Answer(true, [](QMessageBox& box) { box.close(); }));
  EXPECT_FALSE(Answer(true, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }));
  const CFontTable fonts(false);
  CSearchProgressWindow progress(false);
  EXPECT_EQ(FindMessageParent(MessageParent::ProgressWindow), nullptr) << "there, but hidden";
  progress.show();
  EXPECT_EQ(FindMessageParent(MessageParent::ProgressWindow), &progress);
}
