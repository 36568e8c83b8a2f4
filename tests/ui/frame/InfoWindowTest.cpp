#include <gmock/gmock.h>

#include <QLabel>

#include "support/EnvironmentVariable.h"
#include "ui/HomeFixture.h"
#include "ui/frame/InfoWindow.h"
#include "ui/kit/SmallWindow.h"

using testing::ElementsAre;
using testing::EndsWith;

class InfoWindow : public CHomeFixture {};

TEST_F(InfoWindow, KeysGoThroughTheButtonsAndWhatNothingOpensIsTold) {
  QWidget main;
  WhenDialogShows([&](QWidget& window) {
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    ShowInfoWindow(main);  // not a second time
    EXPECT_EQ(window.focusWidget()->accessibleName(), "Close");
    for (const Qt::Key press : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) Press({Qt::Key_Tab, press});
    EXPECT_EQ(window.focusWidget()->accessibleDescription(), "Learn about our current promotional offers");
    for (const QLabel* text : window.findChildren<QLabel*>()) {
      EXPECT_LE(text->heightForWidth(text->width()), text->height())
          << text->text().toStdString() << " is cut";
    }
    Press({Qt::Key_Down, Qt::Key_Space, Qt::Key_Up, Qt::Key_Left, Qt::Key_Right, Qt::Key_Down, Qt::Key_Tab});
    EXPECT_EQ(window.focusWidget()->accessibleName(), "Close");
    Press({Qt::Key_Return});
    EXPECT_FALSE(window.isVisible());
    window.close();
  });
  const CEnvironmentVariable path("PATH", "/nowhere");
  ShowInfoWindow(main);
  // There is no opener, and the test's platform opens nothing.
  EXPECT_THAT(Messages.Texts, ElementsAre(EndsWith("/bin/QuickStart.htm could not be opened."),
                                          "http://www.vellumar.example/feedback could not be opened.",
                                          "http://www.vellumar.example/offers could not be opened.",
                                          "http://www.vellumar.example could not be opened."));
}
