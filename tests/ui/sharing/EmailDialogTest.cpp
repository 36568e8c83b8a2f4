#include <QCheckBox>
#include <QMessageBox>

#include "ui/HomeFixture.h"
#include "ui/sharing/EmailDialog.h"

/// Ticks the box of the dialog and ends it with that key.
static bool TickAndPress(Qt::Key key) {
  When([] { return QApplication::activeModalWidget() != nullptr; },
       [key] {
         auto* dialog = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
         EXPECT_FALSE(dialog->iconPixmap().isNull());
         dialog->checkBox()->setChecked(true);
         QTest::keyClick(dialog, key);
       });
  return ShowEmailDialog(nullptr);
}

TEST_F(CHomeFixture, TheEmailDialogComesBackUntilItIsTickedAndConfirmed) {
  EXPECT_FALSE(TickAndPress(Qt::Key_Escape));
  EXPECT_FALSE(GetSettings()->HasValue("DontShowEmailWarning"));
  EXPECT_TRUE(TickAndPress(Qt::Key_Return));
  EXPECT_TRUE(ShowEmailDialog(nullptr)) << "without a dialog";
}
