#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <memory>
#include <string>
#include <vector>

#include "ui/HomeFixture.h"
#include "ui/back/FieldText.h"
#include "ui/back/PhotoBack.h"
#include "ui/back/PhotoField.h"
#include "ui/kit/PaintedButton.h"

/// The panel as a user works it.
class CPanelFixture : public CStoresFixture {
 protected:
  static void Stamp(const CAssetRecord& photo, StampId type, const std::vector<std::string>& texts) {
    CStampList stamps = photo.GetStamps(type);
    for (const std::string& text : texts) stamps.Add(text);
  }

  /// Shows the window with the panel over that photo.
  void Show(const CAssetRecord& photo) {
    Back = std::make_unique<CPhotoBack>(&Window);
    Back->resize(267, 601);
    Back->OnStampChanged = [this](StampId fact) { Changed.push_back(fact); };
    Back->GetPictureSize = [this] { return PictureSize; };
    Back->SetPhoto(photo);
    Activate(Window);
  }

  CPhotoField& Field(StampId fact) { return *Back->GetField(fact); }
  QString Shown(StampId fact) { return Field(fact).GetShownText(); }
  QList<QAbstractButton*> Stars() {
    return Back->findChild<QWidget*>(QStringLiteral("Rating"))->findChildren<QAbstractButton*>();
  }

  /// The edit box of the field that is being edited.
  QWidget& Box() { return *QApplication::focusWidget(); }
  QString BoxText() {
    if (auto* line = qobject_cast<QLineEdit*>(&Box())) return line->text();
    return qobject_cast<QPlainTextEdit*>(&Box())->toPlainText();
  }

  void Edit(StampId fact, const QString& typed = {}) {
    Field(fact).StartEdit();
    Type(typed);
  }

  /// Types over all of a field's text and leaves the field.
  void Enter(StampId fact, const QString& text) {
    Edit(fact);
    Field(fact).GetTextWindow().GetBox()->SelectAll();
    Type(text);
    Press({Qt::Key_Delete});  // of all, or of a completed tail
    Window.setFocus();
  }

  static QAction* Entry(QMenu* menu, const char* text) {
    for (QAction* action : menu->actions()) {
      if (action->text() == QLatin1String(text)) return action;
    }
    return nullptr;
  }

  QMenu* OpenMenu(StampId fact) {
    QTest::mouseClick(Field(fact).GetButton(), Qt::LeftButton, {}, {5, 5});
    return Field(fact).GetMenu();
  }

  /// The platform without a screen makes the menu the active window, which others don't.
  void CloseMenu(QMenu* menu) {
    menu->close();
    Window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
  }

  void Pick(StampId fact, const char* text) {
    QMenu* menu = OpenMenu(fact);
    Entry(menu, text)->trigger();
    CloseMenu(menu);
  }

  std::unique_ptr<CPhotoBack> Back;
  ImageSize PictureSize{32, 24};
  std::vector<StampId> Changed;  // what the window was told
};
