#pragma once

#include <memory>
#include <vector>

#include "ui/kit/Commands.h"

class CFilterBar;
class CFullScreenState;
class CPaintedButton;
class CPhotoBack;
class CPhotoSet;
class CPhotoTab;
class CPhotoView;
class CStripWindow;
class CToolbar;
class CViewTabBar;
class QWidget;

/// A page of the tab bar and the row of buttons below it. They show while the tab is selected.
struct TabPage {
  ViewTabId Tab;
  QWidget* Page;
  CToolbar* ToolRow;  // null until the page is first shown
};

/// What stands in the main window, and the photos that it shows. CMainFrame makes and owns all of it; the
/// commands and modes of the window work on the parts and don't know the window itself.
struct MainParts {
  QWidget* Window = nullptr;
  std::unique_ptr<CFullScreenState> FullScreenState;
  std::unique_ptr<CPhotoSet> PhotoSet;
  std::unique_ptr<CPaintedButton> HelpButton;
  std::unique_ptr<CPhotoBack> PhotoBack;
  std::unique_ptr<CFilterBar> FilterBar;  // in the photo back
  std::unique_ptr<CToolbar> ToolRow;      // of the current photo's page
  std::unique_ptr<CViewTabBar> TabBar;
  std::unique_ptr<CPhotoView> PhotoView;              // the current photo's page
  std::unique_ptr<CStripWindow> StripWindow;          // shows the set
  std::vector<std::unique_ptr<CPhotoTab>> PhotoTabs;  // the other pages
  std::vector<std::unique_ptr<CToolbar>> PhotoTabRows;
  std::vector<TabPage> Pages;

  /// Null for the current photo's tab.
  CPhotoTab* GetPhotoTab(ViewTabId tab) const;
  /// What the selected tab shows, or has shown if there is no tab bar, as in full-screen mode.
  const TabPage& GetShownPage() const;
};
