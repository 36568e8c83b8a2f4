#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

struct MainParts;

enum class ViewModeId { Normal = 0, FullScreen = 1 };

/// How the main window looks: with all its parts, or with the photo over the whole screen. The current mode
/// decides the window's least size and where its parts stand.
class CViewMode {
 public:
  virtual ~CViewMode() = default;

  virtual ViewModeId GetId() const = 0;

  /// The least size of the window, where the screen has room for it.
  virtual QSize GetMinMaxInfo() const = 0;

  /// Where the button row of a page stands.
  virtual QRect GetToolsRect(const MainParts& parts) const = 0;

  /// Places all parts; called at every change of the window's size.
  virtual void Layout(const MainParts& parts) const;

  /// Brings the window into this mode.
  virtual void Enter(const MainParts& parts) const = 0;

  virtual void PlaceStrip(const MainParts& parts) const = 0;
  virtual void PlacePages(const MainParts& parts) const = 0;
  virtual void PlaceTools(const MainParts& parts) const = 0;
  virtual void PlacePhotoBack(const MainParts& parts) const = 0;

  /// Takes back what Enter has done, before the other mode is entered.
  virtual void OnLeave(const MainParts& parts) const = 0;
};

const CViewMode& GetViewMode(ViewModeId id);

/// Where the logo stands in normal mode, in a window of that size.
QPoint GetLogoPlace(QSize window);
