#pragma once

#include <functional>
#include <memory>
#include <string>

#include "sets/PhotoSet.h"
#include "ui/HomeFixture.h"
#include "ui/back/PhotoBack.h"
#include "ui/frame/MainFrame.h"
#include "ui/kit/Toolbar.h"
#include "ui/pages/PhotoView.h"
#include "ui/search/WindowedSearchProgress.h"
#include "ui/strip/StripWindow.h"

/// A home with photos of one colour each, and the main window over them.
class CFrameFixture : public CHomeFixture {
 protected:
  static constexpr QColor kHues[] = {
      {200, 30, 30}, {30, 160, 40}, {40, 60, 200}, {200, 190, 20}, {150, 40, 180}};

  CFrameFixture() { GetSettings()->SetBool("DontShowAddFolderTip", true); }

  /// In the order of their names, photo `i` has the colour kHues[i % 5].
  void AddPhotos(int count, int first = 0, unsigned width = 320, unsigned height = 240) {
    for (int i = first; i < first + count; ++i)
      Scratch.Write(PhotoName(i), MakePhoto(width, height, kHues[i % 5]));
  }
  static std::string PhotoName(int i) { return "Pictures/" + std::to_string(1000 + i) + ".jpg"; }

  /// Starts a session; the window is at rest.
  CMainFrame& Start() {
    Frame.reset();
    Search.Reset();
    Frame = std::make_unique<CMainFrame>();
    CWindowedSearchProgress progress(false, false);
    EXPECT_TRUE(Frame->Create(OpenStores(), progress));
    Frame->resize(1000, 700);
    Activate(*Frame);
    Rest();
    return *Frame;
  }
  CMainFrame& StartAt(int index) {
    Start();
    GoTo(index);
    return *Frame;
  }

  CMainFrame::OpenStep OpenStores() {
    return [this](CCatalog& catalog, CThumbnailCache& cache) {
      catalog.Open(InHome("vellumar.db"));
      cache.Open(InHome("vellumar.thumbs"), catalog.GetDBGUID());
      return true;
    };
  }

  /// Until the strip is at rest and its photo is shown.
  void Rest() {
    QCoreApplication::processEvents();
    Frame->GetStrip().FinishMove();
    Frame->GetStrip().AnnounceNow();
    QCoreApplication::processEvents();
  }
  void GoTo(int index) {
    Frame->GetStrip().MoveTo(index);
    Rest();
  }
  /// Presses keys one after the other, wherever the focus is, without a rest between them.
  void Press(std::initializer_list<Qt::Key> keys, Qt::KeyboardModifiers modifiers = {}) {
    for (const Qt::Key key : keys) QTest::keyClick(QApplication::focusWidget(), key, modifiers);
  }

  const MainParts& Parts() { return Frame->GetParts(); }
  int Position() { return Frame->GetStrip().GetCurrentIndex(); }
  CAssetRecord Photo(int index) { return Frame->GetPhotoSet().GetAsset(index); }
  bool IsToEmail(int index) { return Photo(index).GetFlag(PhotoFlag::ToEmail); }
  CPaintedButton& Button(CommandId id) { return *Parts().ToolRow->GetButton(id); }

  /// Whether the large photo has the colour of photo `i`.
  bool ShowsPhoto(int i) {
    QWidget& view = *Parts().PhotoView;
    const QColor shown = Painted(view).pixelColor(view.rect().center());
    const QColor& hue = kHues[i % 5];
    return std::abs(shown.red() - hue.red()) + std::abs(shown.green() - hue.green()) +
               std::abs(shown.blue() - hue.blue()) <
           40;
  }

  std::unique_ptr<CMainFrame> Frame;
};
