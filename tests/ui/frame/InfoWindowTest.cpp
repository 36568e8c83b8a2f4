#include <gmock/gmock.h>

#include <QDesktopServices>
#include <QDialog>
#include <QLabel>
#include <QTextBrowser>
#include <QUrl>

#include "ui/HomeFixture.h"
#include "ui/frame/InfoWindow.h"

using testing::ElementsAre;
using testing::EndsWith;

namespace {

class InfoWindow : public CHomeFixture {
 protected:
  /// Opens the window, uses it, and waits until it is closed.
  void Open(const std::function<void(QDialog& window)>& use) {
    When([] { return QApplication::activeModalWidget() != nullptr; },
         [&] {
           auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
           EXPECT_TRUE(QTest::qWaitForWindowActive(window));
           use(*window);
           EXPECT_FALSE(window->isVisible());
           window->close();
         });
    ShowInfoWindow(Main);
  }

  QWidget Main;
};

/// Takes addresses in the desktop's place, by its slot.
class COpenedAddresses {
 public:
  COpenedAddresses() {
    QObject::connect(&Browser, &QTextBrowser::sourceChanged,
                     [this](const QUrl& address) { List.push_back(address.toString().toStdString()); });
    for (const auto& scheme : kSchemes) QDesktopServices::setUrlHandler(scheme, &Browser, "setSource");
  }
  ~COpenedAddresses() {
    for (const auto& scheme : kSchemes) QDesktopServices::unsetUrlHandler(scheme);
  }
  COpenedAddresses(const COpenedAddresses&) = delete;
  COpenedAddresses& operator=(const COpenedAddresses&) = delete;

  std::vector<std::string> List;

 private:
  const QString kSchemes[2] = {QStringLiteral("http"), QStringLiteral("file")};
  QTextBrowser Browser;
};

}  // namespace

TEST_F(InfoWindow, KeysGoThroughTheButtonsAndPressThem) {
  COpenedAddresses opened;
  Open([&](QDialog& window) {
    EXPECT_EQ(window.accessibleName(), "Information");
    EXPECT_EQ(window.focusWidget()->accessibleName(), "Close");
    ShowInfoWindow(Main);  // not a second time
    std::vector<std::string> told;
    for (const auto& [next, press] : {std::pair(Qt::Key_Tab, Qt::Key_Space),
                                      {Qt::Key_Down, Qt::Key_Return},
                                      {Qt::Key_Right, Qt::Key_Space},
                                      {Qt::Key_Tab, Qt::Key_Enter}}) {
      Press({next});
      told.push_back(window.focusWidget()->accessibleDescription().toStdString());
      Press({press});
    }
    EXPECT_THAT(told, ElementsAre("Guide to key commands and quick answers", "Send us your feedback",
                                  "Learn about our current promotional offers",
                                  "Visit our website for information about our latest products"));
    EXPECT_THAT(opened.List,
                ElementsAre(EndsWith("/bin/QuickStart.htm"), "http://www.vellumar.example/feedback",
                            "http://www.vellumar.example/offers", "http://www.vellumar.example"));
    for (const QLabel* text : window.findChildren<QLabel*>()) {
      EXPECT_LE(text->heightForWidth(text->width()), text->height())
          << text->text().toStdString() << " is cut";
    }
    Press({Qt::Key_Up, Qt::Key_Left, Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Down});
    EXPECT_EQ(window.focusWidget()->accessibleName(), "Close");
    Press({Qt::Key_Return});
  });
  Open([](QDialog&) { Press({Qt::Key_Escape}); });
}

TEST_F(InfoWindow, AnAddressThatNothingOpensIsTold) {
  Open([&](QDialog&) { Press({Qt::Key_Tab, Qt::Key_Space, Qt::Key_Tab, Qt::Key_Space, Qt::Key_Escape}); });
  EXPECT_THAT(Messages.Texts, ElementsAre(EndsWith("/bin/QuickStart.htm could not be opened."),
                                          "http://www.vellumar.example/feedback could not be opened."));
}

TEST(CentreInWorkArea, KeepsTheWindowOnTheScreen) {
  const QRect area(0, 30, 1000, 700);
  EXPECT_EQ(CentreInWorkArea({400, 330}, {200, 100, 600, 500}, area), QPoint(300, 185));
  EXPECT_EQ(CentreInWorkArea({400, 330}, {-500, -400, 600, 500}, area), QPoint(0, 30));
  EXPECT_EQ(CentreInWorkArea({400, 330}, {900, 600, 600, 500}, area), QPoint(600, 400));
  EXPECT_EQ(CentreInWorkArea({400, 330}, {0, 0, 100, 100}, {0, 30, 300, 200}), QPoint(0, 30));
}
