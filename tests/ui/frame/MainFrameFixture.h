#pragma once

#include "sets/PhotoSet.h"
#include "ui/HomeFixture.h"
#include "ui/controls/Toolbar.h"
#include "ui/frame/MainFrame.h"
#include "ui/pages/PhotoView.h"
#include "ui/search/WindowedSearchProgress.h"
#include "ui/strip/StripWindow.h"

/// The main window over the photos of a home.
class CMainFrameFixture : public CHomeFixture {
 protected:
  CMainFrameFixture() { GetSettings()->SetBool("DontShowAddFolderTip", true); }

  /// Starts a session; the window is at rest, on that photo or where the session begins.
  CMainFrame& Start(int position = -1) {
    Frame.reset();
    Search.Reset();
    Frame = std::make_unique<CMainFrame>();
    CWindowedSearchProgress progress(false, false);
    EXPECT_TRUE(Frame->Create(OpenStores(), progress));
    Frame->resize(1000, 700);
    Activate(*Frame);
    if (position >= 0) Frame->GetStrip().MoveTo(position);
    Rest();
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

  const MainParts& Parts() { return Frame->GetParts(); }
  int Position() { return Frame->GetStrip().GetCurrentIndex(); }
  CAssetRecord Photo(int index) { return Frame->GetPhotoSet().GetAsset(index); }
  bool IsToEmail(int index) { return Photo(index).GetFlag(PhotoFlag::ToEmail); }
  CPaintedButton& Button(CommandId id) { return *Parts().ToolRow->GetButton(id); }

  /// Whether the large photo has the colour of photo `i`.
  bool ShowsPhoto(int i) {
    QWidget& view = *Parts().PhotoView;
    const QColor shown = Painted(view).pixelColor(view.rect().center());
    return std::abs(shown.hue() - kHues[i % 5].hue()) < 20;
  }

  std::unique_ptr<CMainFrame> Frame;
};
