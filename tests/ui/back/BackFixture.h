#pragma once

#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <memory>
#include <string>
#include <vector>

#include "base/Folders.h"
#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/FolderSearch.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"
#include "ui/back/FieldText.h"
#include "ui/back/PhotoBack.h"
#include "ui/back/PhotoField.h"

/// A catalog with photos whose files exist, and the panel in a window that can take the focus, as the main
/// window does.
class CBackFixture : public testing::Test {
 protected:
  CBackFixture() : Home("HOME", Scratch.GetPath()) {
    ForgetMyPicturesFolder();
    Catalog.Open(Scratch.File("vellumar.db"));
    Cache.Open(Scratch.File("vellumar.thumbs"), Catalog.GetDBGUID());
  }
  ~CBackFixture() override { CFolderSearch::GetInstance().Reset(); }

  CAssetRecord AddPhoto(const std::string& name, std::int32_t written = 0) {
    CAssetRecord photo =
        Catalog.AddAsset(Scratch.Write("Pictures/" + name, MakePhoto(32, 24, Qt::darkGreen)));
    photo.StampNewPhoto(written, written);
    return photo;
  }

  /// The texts of a photo's stamps, "a|b".
  static std::string Texts(const CAssetRecord& photo, StampId type) {
    const CStampList stamps = photo.GetStamps(type);
    std::string texts;
    for (int i = 0; i < stamps.Count(); ++i) texts += (i > 0 ? "|" : "") + stamps.Get(i).GetText();
    return texts;
  }

  void Set(const CAssetRecord& photo, StampId type, const std::vector<std::string>& texts) {
    CStampList stamps = photo.GetStamps(type);
    for (const std::string& text : texts) stamps.Add(text);
  }

  /// Shows the window with the panel over that photo.
  void Show(const CAssetRecord& photo, QSize panel = {267, 601}) {
    Window.setFocusPolicy(Qt::StrongFocus);
    Window.resize(panel.width() + 20, panel.height() + 20);
    Back = std::make_unique<CPhotoBack>(&Window);
    Back->resize(panel);
    Back->OnStampChanged = [this](StampId type) { Changed.push_back(static_cast<int>(type)); };
    Back->GetPictureSize = [this] { return PictureSize; };
    Back->SetPhoto(photo);
    Window.show();
    Window.activateWindow();
    Window.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window));
  }

  CPhotoField& Field(FieldRow row) { return *Back->GetField(row); }

  /// The edit box of the field that is being edited.
  QWidget& Box() {
    QWidget* box = QApplication::focusWidget();
    EXPECT_NE(box, nullptr);
    EXPECT_NE(box, &Window);
    return *box;
  }

  QString BoxText() {
    if (auto* line = qobject_cast<QLineEdit*>(&Box())) return line->text();
    return qobject_cast<QPlainTextEdit*>(&Box())->toPlainText();
  }

  void Edit(FieldRow row) { Field(row).StartEdit(); }

  void Type(const QString& text) {
    for (const QChar c : text) {
      // The test library knows the keys of Latin letters alone.
      QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(c));
      QCoreApplication::sendEvent(&Box(), &press);
    }
  }

  /// Types over all of a field's text and leaves the field.
  void Enter(FieldRow row, const QString& text) {
    Edit(row);
    Field(row).GetTextWindow().GetBox()->SelectAll();
    QTest::keyClick(&Box(), Qt::Key_Delete);
    Type(text);
    QTest::keyClick(&Box(), Qt::Key_Delete);  // of a completed tail
    Window.setFocus();
    EXPECT_FALSE(Back->IsEditing());
  }

  CScratchFolder Scratch;
  const CEnvironmentVariable Home;
  CNotedMessages Messages;
  const CFontTable Fonts{false};
  CCatalog Catalog;
  CThumbnailCache Cache;
  QWidget Window;
  std::unique_ptr<CPhotoBack> Back;
  ImageSize PictureSize{32, 24};
  std::vector<int> Changed;  // what the window was told
};
