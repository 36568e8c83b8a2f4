#include "ui/frame/ViewMode.h"

#include "ui/back/PhotoBack.h"
#include "ui/controls/PaintedButton.h"
#include "ui/controls/Toolbar.h"
#include "ui/frame/FullScreen.h"
#include "ui/frame/MainParts.h"
#include "ui/kit/FontTable.h"
#include "ui/pages/PhotoView.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/strip/StripWindow.h"

namespace {

constexpr int kMargin = 5;
constexpr int kToolRowHeight = 55;
constexpr int kFullScreenToolsMargins = 50;  // both sides together
constexpr int kPhotoBackTop = 34;
constexpr int kPhotoBackLeft = 270;  // from the window's right edge
constexpr int kPhotoBackWidth = 267;
constexpr int kHelpMargin = 3;

/// Where the parts stand in normal mode, in pixels of the layout.
struct MainLayout {
  QRect Strip;
  QRect TabBar;
  QRect ToolRow;
  QRect PhotoBack;
  QRect HelpButton;
};

MainLayout GetLayout(const MainParts& parts) {
  const QSize window = parts.Window->size();
  const QSize help = parts.HelpButton->size();
  const int stripTop = window.height() - kStripWindowHeight;
  MainLayout layout;
  layout.Strip = QRect(0, stripTop, window.width(), kStripWindowHeight);
  layout.PhotoBack = QRect(window.width() - kPhotoBackLeft, kPhotoBackTop, kPhotoBackWidth,
                           stripTop - kPhotoBackTop - kMargin);
  layout.TabBar = QRect(kMargin, kMargin, layout.PhotoBack.left() - 2 * kMargin,
                        stripTop - kMargin - kToolRowHeight - kMargin);
  layout.ToolRow = QRect(layout.TabBar.left(), layout.TabBar.top() + layout.TabBar.height(),
                         layout.TabBar.width(), kToolRowHeight);
  layout.HelpButton =
      QRect(QPoint(window.width() - kHelpMargin - help.width(), (kPhotoBackTop - help.height()) / 2), help);
  return layout;
}

class CNormalMode : public CViewMode {
 public:
  ViewModeId GetId() const override { return ViewModeId::Normal; }
  QSize GetMinMaxInfo() const override { return {800, CFontTable::IsSmallScreen() ? 550 : 600}; }
  QRect GetToolsRect(const MainParts& parts) const override { return GetLayout(parts).ToolRow; }

  void Enter(const MainParts& parts) const override {
    parts.TabBar->show();
    parts.PhotoBack->show();
    parts.HelpButton->show();
    parts.StripWindow->show();
  }

  void OnLeave(const MainParts& parts) const override {
    parts.TabBar->hide();
    parts.PhotoBack->hide();
    parts.HelpButton->hide();
    parts.StripWindow->hide();
  }

  void PlaceStrip(const MainParts& parts) const override {
    const QRect place = GetLayout(parts).Strip;
    parts.StripWindow->setGeometry(place);
  }

  void PlacePages(const MainParts& parts) const override {
    CViewTabBar& bar = *parts.TabBar;
    bar.setGeometry(GetLayout(parts).TabBar);
    parts.PhotoView->SetLook({.Margin = true, .CentreVertically = true});
    for (const TabPage& page : parts.Pages) page.Page->setGeometry(bar.GetPageRect().translated(bar.pos()));
  }

  void PlacePhotoBack(const MainParts& parts) const override {
    const MainLayout layout = GetLayout(parts);
    parts.PhotoBack->setGeometry(layout.PhotoBack);
    parts.HelpButton->move(layout.HelpButton.topLeft());
  }

  void PlaceTools(const MainParts& parts) const override {
    parts.ToolRow->SetFullScreenLook(false);
    for (const TabPage& page : parts.Pages) {
      if (page.ToolRow != nullptr) page.ToolRow->setGeometry(GetToolsRect(parts));
    }
  }
};

class CFullScreenMode : public CViewMode {
 public:
  ViewModeId GetId() const override { return ViewModeId::FullScreen; }
  QSize GetMinMaxInfo() const override { return {0, 0}; }

  QRect GetToolsRect(const MainParts& parts) const override {
    const QSize window = parts.Window->size();
    const int width = parts.ToolRow->GetContentWidth() + kFullScreenToolsMargins;
    return {window.width() - width, window.height() - kToolRowHeight, width, kToolRowHeight};
  }

  // The desktop remembers the window's former place and whether it was maximized.
  void Enter(const MainParts& parts) const override { parts.FullScreenState->Request(true); }

  void OnLeave(const MainParts& parts) const override { parts.FullScreenState->Request(false); }

  void PlaceStrip(const MainParts&) const override {}

  void PlacePages(const MainParts& parts) const override {
    parts.PhotoView->SetLook({.Margin = false, .CentreVertically = true});
    parts.PhotoView->setGeometry(parts.Window->rect());
  }

  void PlaceTools(const MainParts& parts) const override {
    parts.ToolRow->SetFullScreenLook(true);
    parts.ToolRow->setGeometry(GetToolsRect(parts));
    parts.ToolRow->raise();
  }

  void PlacePhotoBack(const MainParts&) const override {}
};

}  // namespace

void CViewMode::Layout(const MainParts& parts) const {
  PlaceStrip(parts);
  PlacePages(parts);
  PlacePhotoBack(parts);
  PlaceTools(parts);
}

const CViewMode& GetViewMode(ViewModeId id) {
  static const CNormalMode normal;
  static const CFullScreenMode fullScreen;
  if (id == ViewModeId::FullScreen) return fullScreen;
  return normal;
}

QPoint GetLogoPlace(QSize window) { return {window.width() - kPhotoBackLeft, kMargin}; }
