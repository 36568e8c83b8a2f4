#pragma once

#include <QRect>
#include <QSize>

class CMainFrame;

enum class ViewModeId { Normal = 0, FullScreen = 1 };

/// How the main window looks: with all its parts, or with the photo over the whole screen. The current mode
/// decides the window's least size and where its parts stand.
class CViewMode {
 public:
  virtual ~CViewMode() = default;

  virtual ViewModeId GetId() const = 0;

  /// The least size of the window.
  virtual QSize GetMinMaxInfo() const = 0;

  /// Where the button row of the current page stands.
  virtual QRect GetToolsRect(const CMainFrame& frame) const = 0;

  /// Places all parts; called at every change of the window's size.
  virtual void Layout(CMainFrame& frame) const;

  /// Brings the window into this mode.
  virtual void Enter(CMainFrame& frame) const = 0;

  virtual void PlaceStrip(CMainFrame& frame) const = 0;
  virtual void PlacePages(CMainFrame& frame) const = 0;
  virtual void PlaceTools(CMainFrame& frame) const = 0;
  virtual void PlacePhotoBack(CMainFrame& frame) const = 0;

  /// Takes back what Enter has done, before the other mode is entered.
  virtual void OnLeave(CMainFrame& frame) const = 0;
};

const CViewMode& GetViewMode(ViewModeId id);
