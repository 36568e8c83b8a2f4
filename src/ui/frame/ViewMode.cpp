#include "ui/frame/ViewMode.h"

#include "ui/back/PhotoBack.h"
#include "ui/frame/MainFrame.h"
#include "ui/frame/MainLayout.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/PaintedButton.h"
#include "ui/kit/Toolbar.h"
#include "ui/pages/PhotoView.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/strip/StripWindow.h"

namespace {

MainLayout GetLayout(const CMainFrame& frame) {
  return LayOutMainWindow(frame.size(), kStripWindowHeight, frame.GetHelpButton().size());
}

class CNormalMode : public CViewMode {
 public:
  ViewModeId GetId() const override { return ViewModeId::Normal; }
  QSize GetMinMaxInfo() const override { return MinimumMainWindowSize(CFontTable::IsSmallScreen()); }
  QRect GetToolsRect(const CMainFrame& frame) const override { return GetLayout(frame).ToolRow; }

  void Enter(CMainFrame& frame) const override {
    frame.GetTabBar().show();
    frame.GetPhotoBack().show();
    frame.GetHelpButton().show();
    frame.GetStripWindow().show();
  }

  void OnLeave(CMainFrame& frame) const override {
    frame.GetTabBar().hide();
    frame.GetPhotoBack().hide();
    frame.GetHelpButton().hide();
    frame.GetStripWindow().hide();
  }

  void PlaceStrip(CMainFrame& frame) const override {
    const QRect place = GetLayout(frame).Strip;
    frame.GetStripWindow().setGeometry(place);
  }

  void PlacePages(CMainFrame& frame) const override {
    CViewTabBar& bar = frame.GetTabBar();
    bar.setGeometry(GetLayout(frame).TabBar);
    CPhotoView& view = frame.GetPhotoView();
    view.SetLook({.Margin = true, .CentreVertically = true});
    view.setGeometry(bar.GetPageRect().translated(bar.pos()));
  }

  void PlacePhotoBack(CMainFrame& frame) const override {
    const MainLayout layout = GetLayout(frame);
    frame.GetPhotoBack().setGeometry(layout.PhotoBack);
    frame.GetHelpButton().move(layout.HelpButton.topLeft());
  }

  void PlaceTools(CMainFrame& frame) const override {
    CToolbar& row = frame.GetToolRow();
    row.SetFullScreenLook(false);
    row.setGeometry(GetToolsRect(frame));
  }
};

class CFullScreenMode : public CViewMode {
 public:
  ViewModeId GetId() const override { return ViewModeId::FullScreen; }
  QSize GetMinMaxInfo() const override { return {0, 0}; }

  QRect GetToolsRect(const CMainFrame& frame) const override {
    return FullScreenToolRow(frame.size(), frame.GetToolRow().GetContentWidth());
  }

  // The desktop remembers the window's former place and whether it was maximized.
  void Enter(CMainFrame& frame) const override { frame.GetFullScreenState().Request(true); }

  void OnLeave(CMainFrame& frame) const override { frame.GetFullScreenState().Request(false); }

  void PlaceStrip(CMainFrame&) const override {}

  void PlacePages(CMainFrame& frame) const override {
    CPhotoView& view = frame.GetPhotoView();
    view.SetLook({.Margin = false, .CentreVertically = true});
    view.setGeometry(frame.rect());
  }

  void PlaceTools(CMainFrame& frame) const override {
    CToolbar& row = frame.GetToolRow();
    row.SetFullScreenLook(true);
    row.setGeometry(GetToolsRect(frame));
    row.raise();
  }

  void PlacePhotoBack(CMainFrame&) const override {}
};

}  // namespace

void CViewMode::Layout(CMainFrame& frame) const {
  PlaceStrip(frame);
  PlacePages(frame);
  PlacePhotoBack(frame);
  PlaceTools(frame);
}

const CViewMode& GetViewMode(ViewModeId id) {
  static const CNormalMode normal;
  static const CFullScreenMode fullScreen;
  if (id == ViewModeId::FullScreen) return fullScreen;
  return normal;
}
