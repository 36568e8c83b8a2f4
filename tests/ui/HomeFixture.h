#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <filesystem>
#include <initializer_list>
#include <string>

#include "base/Folders.h"
#include "base/Settings.h"
#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/FolderSearch.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"

/// A user with a home and settings of its own; the process knows nothing of the tests before.
class CHomeFixture : public testing::Test {
 protected:
  CHomeFixture() : Home("HOME", Scratch.GetPath()), Config("XDG_CONFIG_HOME", std::nullopt) {
    ForgetMyPicturesFolder();
    Search.Reset();
    std::filesystem::create_directory(InHome("Pictures"));
    SetSettings(std::make_unique<CRegistrySettings>(Scratch.File("settings")));
  }
  ~CHomeFixture() override {
    Search.Reset();
    SetSettings(nullptr);
  }

  std::string InHome(const std::string& name) const { return Scratch.GetPath() + "/" + name; }

  /// Brings a window to the front, with the focus.
  static void Activate(QWidget& window) {
    window.show();
    window.activateWindow();
    window.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  }

  /// Presses keys one after the other, wherever the focus is then.
  static void Press(std::initializer_list<Qt::Key> keys, Qt::KeyboardModifiers modifiers = {}) {
    for (const Qt::Key key : keys) QTest::keyClick(QApplication::focusWidget(), key, modifiers);
  }
  /// Types into whatever has the focus.
  static void Type(const QString& text) {
    for (const QChar c : text) {
      // The test library knows the keys of Latin letters alone.
      QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(c));
      QCoreApplication::sendEvent(QApplication::focusWidget(), &press);
    }
  }

  static constexpr QColor kHues[] = {
      {200, 30, 30}, {30, 160, 40}, {40, 60, 200}, {200, 190, 20}, {150, 40, 180}};
  static std::string PhotoName(int i) { return "Pictures/" + std::to_string(1000 + i) + ".jpg"; }
  /// Writes photos whose names follow one another; photo `i` has the colour kHues[i % 5].
  void WritePhotos(int count, int first = 0, unsigned width = 320, unsigned height = 240) const {
    for (int i = first; i < first + count; ++i) {
      Scratch.Write(PhotoName(i), MakePhoto(width, height, kHues[i % 5]));
    }
  }

  /// Gives a photo further stamps.
  static void Stamp(const CAssetRecord& photo, StampId type, std::initializer_list<std::string> texts) {
    CStampList stamps = photo.GetStamps(type);
    for (const std::string& text : texts) stamps.Add(text);
  }
  /// The texts of a photo's stamps, "a|b".
  static std::string Texts(const CAssetRecord& photo, StampId type) {
    const CStampList stamps = photo.GetStamps(type);
    std::string texts;
    for (int i = 0; i < stamps.Count(); ++i) texts += (i > 0 ? "|" : "") + stamps.Get(i).GetText();
    return texts;
  }

  CScratchFolder Scratch;
  const CEnvironmentVariable Home, Config;
  CScriptedMessages Messages;
  const CFontTable Fonts{false};
  CFolderSearch& Search = CFolderSearch::GetInstance();
};

/// The same with open data stores, and a window that takes the focus as the main window does.
class CStoresFixture : public CHomeFixture {
 protected:
  CStoresFixture() {
    Catalog.Open(InHome("vellumar.db"));
    Cache.Open(InHome("vellumar.thumbs"), Catalog.GetDBGUID());
    Window.setFocusPolicy(Qt::StrongFocus);
    Window.resize(400, 630);
  }

  std::string WritePhoto(const std::string& path) const {
    return Scratch.Write(path, MakePhoto(32, 24, QColor(100, 50, static_cast<int>(path.size()))));
  }

  /// A photo in the pictures folder that is in the catalog.
  CAssetRecord AddPhoto(const std::string& name, std::int32_t written = 0) {
    CAssetRecord photo = Catalog.AddAsset(WritePhoto("Pictures/" + name));
    photo.StampNewPhoto(written, written, 0);
    photo.MakeThumbnail();
    return photo;
  }

  CCatalog Catalog;
  CThumbnailCache Cache;
  QWidget Window;
};
