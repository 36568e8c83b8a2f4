#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>

#include "base/Settings.h"
#include "ui/HomeFixture.h"
#include "ui/frame/EmailDialog.h"

namespace {

using EmailDialog = CHomeFixture;

/// Shows the dialog, ticks its box with `tick` and ends it with that key.
bool Answer(QWidget& parent, bool tick, Qt::Key key) {
  When([] { return QApplication::activeModalWidget() != nullptr; },
       [=] {
         auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
         EXPECT_FALSE(box->checkBox()->isChecked());
         EXPECT_FALSE(box->iconPixmap().isNull());
         const auto* text = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
         EXPECT_GE(text->height(), text->heightForWidth(text->width())) << "cut";
         box->checkBox()->setChecked(tick);
         QTest::keyClick(box, key);
       });
  return ShowEmailDialog(&parent);
}

TEST_F(EmailDialog, ComesBackUntilItIsTickedAndConfirmed) {
  QWidget parent;
  EXPECT_FALSE(Answer(parent, true, Qt::Key_Escape));
  EXPECT_FALSE(GetSettings()->HasValue("DontShowEmailWarning"));
  EXPECT_TRUE(Answer(parent, false, Qt::Key_Return));
  EXPECT_TRUE(Answer(parent, true, Qt::Key_Return));
  EXPECT_TRUE(GetSettings()->GetBool("DontShowEmailWarning"));
  EXPECT_TRUE(ShowEmailDialog(&parent)) << "without a dialog";
}

}  // namespace
