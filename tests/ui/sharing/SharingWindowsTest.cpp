#include <QLabel>
#include <QLineEdit>

#include "sharing/ServiceFixture.h"
#include "ui/HomeFixture.h"
#include "ui/kit/Colours.h"
#include "ui/sharing/LoginDialog.h"
#include "ui/sharing/UploadWindow.h"

class SharingWindows : public CStoresFixture {
 protected:
  /// Shows the dialog, lets `use` see and end it, and returns its answer.
  bool Ask(LoginEntry& entry, const std::function<void(QWidget&)>& use) {
    When([] { return QApplication::activeModalWidget() != nullptr; },
         [=] {
           QWidget& dialog = *QApplication::activeModalWidget();
           EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
           use(dialog);
         });
    return ShowLoginDialog(Window, Desktop, entry);
  }

  const CEnvironmentVariable Host{"VELLUMAR_SERVICE_HOST", "host.test"};
  CScriptedDesktop Desktop;
};

TEST_F(SharingWindows, TheLoginDialogTakesNameAndPasswordAndOffersToJoin) {
  LoginEntry entry;
  entry.UserName = "Ann";
  EXPECT_TRUE(Ask(entry, [](QWidget& dialog) {
    for (const QLabel* label : dialog.findChildren<QLabel*>()) {
      EXPECT_LE(label->heightForWidth(label->width()), label->height())
          << label->text().toStdString() << " is cut";
    }
    const auto* password = qobject_cast<QLineEdit*>(dialog.focusWidget());
    EXPECT_EQ(password->accessibleName(), "Password:");
    EXPECT_EQ(password->echoMode(), QLineEdit::Password);
    Press({Qt::Key_Tab, Qt::Key_Return});
    EXPECT_TRUE(dialog.isVisible()) << "the page to join is open in the browser, and so is the dialog";
    Press({Qt::Key_Backtab});
    Type("p");
    Press({Qt::Key_Enter});
  }));
  EXPECT_EQ(Desktop.Pages, (std::vector<std::string>{"http://host.test/Join.asp?Source=Vellumar"}));
  EXPECT_EQ(entry.UserName + " " + std::string(entry.Password.Get()), "Ann p");
  EXPECT_FALSE(Ask(entry, [](QWidget&) { Press({Qt::Key_Escape}); }));
}

TEST_F(SharingWindows, TheUploadWindowShowsThePhotoAndStops) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Activate(Window);
  const std::function<void(CUploadWindow&, QWidget&)> stops[] = {
      [](CUploadWindow&, QWidget& button) { QTest::mouseClick(&button, Qt::LeftButton); },
      [](CUploadWindow& window, QWidget&) { QTest::keyClick(&window, Qt::Key_Escape); },
      [](CUploadWindow&, QWidget&) {
        Press({Qt::Key_Return, Qt::Key_Tab, Qt::Key_Return});
      },
      [](CUploadWindow& window, QWidget&) { EXPECT_FALSE(window.close()); }};
  for (const auto& stop : stops) {
    CUploadWindow window(Window);
    EXPECT_FALSE(Window.isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &window; }));
    window.SetTotal(4);
    EXPECT_EQ(Painted(window).pixelColor(86, 106), colours::kEmptyCell);
    window.SetPhoto(1, DescribePhotoToUpload(photo));
    EXPECT_NE(Painted(window).pixelColor(86, 106), colours::kEmptyCell);
    EXPECT_TRUE(window.SetPercent(50));
    EXPECT_EQ(Painted(window).pixelColor(172 + 42, 111), colours::kProgress);  // 37 %
    EXPECT_FALSE(window.IsStopped());
    stop(window, *window.findChild<QAbstractButton*>());
    EXPECT_TRUE(window.IsStopped());
    EXPECT_FALSE(window.SetPercent(60));
  }
  EXPECT_TRUE(Window.isEnabled());
}
