#pragma once

#include <QAbstractButton>
#include <QApplication>

#include "ui/back/BackFixture.h"

/// The panel as a user works it.
class CPhotoBackFixture : public CBackFixture {
 protected:
  static constexpr std::int32_t kSomeDay = 1060430400;  // August 9, 2003

  QString Shown(FieldRow row) { return Field(row).GetShownText(); }

  QList<QAbstractButton*> Stars() {
    return Back->findChild<QWidget*>(QStringLiteral("Rating"))->findChildren<QAbstractButton*>();
  }

  /// Presses and releases the left button over the middle of a widget, as the window system would: the focus
  /// goes to the window first.
  static void Click(QWidget& widget, QPoint place) {
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, place);
  }

  static QAction* Entry(QMenu* menu, const char* text) {
    for (QAction* action : menu->actions()) {
      if (action->text() == QString::fromUtf8(text)) return action;
    }
    return nullptr;
  }

  QMenu* OpenMenu(FieldRow row) {
    Click(*Field(row).GetButton(), {5, 5});
    EXPECT_NE(Field(row).GetMenu(), nullptr);
    return Field(row).GetMenu();
  }

  /// The platform without a screen makes the menu the active window, which others don't.
  void CloseMenu(QMenu* menu) {
    menu->close();
    Window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
  }

  void Pick(QMenu* menu, const char* text) {
    QAction* entry = Entry(menu, text);
    ASSERT_NE(entry, nullptr) << text;
    entry->trigger();
    CloseMenu(menu);
  }
};
