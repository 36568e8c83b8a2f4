#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "imaging/PixelBuffer.h"
#include "ui/back/FilterBarHost.h"
#include "ui/frame/FullScreen.h"
#include "ui/frame/InputFilter.h"
#include "ui/frame/LeastSize.h"
#include "ui/frame/MainCommands.h"
#include "ui/frame/MainParts.h"
#include "ui/frame/PathsToShow.h"
#include "ui/frame/ThumbnailCheck.h"
#include "ui/frame/ViewMode.h"
#include "ui/kit/PaintedGroup.h"
#include "ui/pages/PhotoTab.h"
#include "ui/strip/Filmstrip.h"

class CFilmstrip;
class CWindowedSearchProgress;
struct Command;

/// What the event loop returns when the main window has been closed, and so the program's exit code after
/// a normal session.
inline constexpr int kNormalExitCode = 1;

/// The main window. It owns the two data stores and all that it shows: the strip below, the page of the
/// selected tab with its button row, the photo back. Commands and keys arrive here, and here a change of the
/// current photo goes round. Nothing needs to be saved when it is closed, for every change is in the catalog
/// already.
class CMainFrame : public QWidget,
                   public CPaintedGroup,
                   public CFocusHolder,
                   public CFilmstripHost,
                   public CFilterBarHost,
                   public CPhotoTabHost {
 public:
  /// Opens the data stores; false if the program can't go on.
  using OpenStep = std::function<bool(CCatalog& catalog, CThumbnailCache& cache)>;

  /// Makes the object; nothing is opened and nothing shows.
  CMainFrame();
  ~CMainFrame() override;

  /// Brings up all that must stand before the user sees the window: the data stores, the first search, the
  /// set, the parts of the window. Each long step is a job that `progress` may stop. False if
  /// `openDataStores` says so.
  bool Create(const OpenStep& openDataStores, CWindowedSearchProgress& progress);

  /// Shows the window maximized, in front and with the focus.
  void ShowInFront();

  /// Shows photos and folders, by their absolute paths, as soon as nothing else is going on.
  void ShowPaths(std::vector<std::string> paths) { PathsToShow.Add(std::move(paths)); }
  bool ArePathsWaiting() const { return PathsToShow.IsBusy(); }

  /// True once the user or the system has asked to close, also while that has to wait for a job.
  bool IsClosing() const override { return Closing; }

  // What happens in the strip.
  void OnCommand(CommandId id) override;
  void OnCurrentPhotoChanged(const CAssetRecord* record) override;
  bool ShowsAtOnce(const CAssetRecord& record) const override;
  void OnSlideBegins(const CAssetRecord* target) override;
  void OnSlideShowStateChanged() override;
  void ToggleInTab(const CAssetRecord& photo, ViewTabId tab, bool extendRange) override;
  void SelectTab(ViewTabId tab) override;
  std::string GetFolderLabel(const std::string& folder) const override;

  // What the filter bar needs.
  CCatalog& GetCatalog() override { return Catalog; }
  CPhotoSet& GetPhotoSet() override { return *Parts.PhotoSet; }
  void RefreshStrip(StripPosition position) override;
  void MoveStrip(int index) override;
  void OnEditBegins() override;
  void FocusMainWindow() override { setFocus(); }
  void PrepareForJob() override;
  void OnFoldersSearched() override;

  // What the pages of photos need.
  void OnMarksChanged(const CAssetIdSet& photos) override;
  void ShowInStrip(std::int32_t assetId) override;
  void RebuildStrip() override;

  /// The current photo's file was changed, and the photo view holds its new picture: what else shows the
  /// photo is renewed.
  void OnPhotoChanged();

  /// Full-screen mode is entered only with a photo.
  void ToggleFullScreen(FullScreenChange change);
  bool IsFullScreen() const { return Mode->GetId() == ViewModeId::FullScreen; }

  /// Shows or hides the button row and the pointer; in full-screen mode only.
  void ShowTools(bool show);
  /// Moves of the pointer that wait in the queue don't bring up the tools.
  void DropMouseMoves();

  void StartSlideShow();
  void StopSlideShow();
  bool IsSlideShowRunning() const;

  /// Swallows keys, clicks and commands, which are lost, while it is on. Closing waits for its end.
  void SetInputBlocked(bool on) override;
  bool IsInputBlocked() const { return InputFilter && InputFilter->IsBlocked(); }

  // For assistive tools. The keys of the window move the strip or, in full-screen mode, lead to other photos.
  QAccessible::Role GetGroupRole() const override { return QAccessible::Window; }
  std::vector<GroupPart> ListParts() const override;
  QWidget* GetFocusedPart() const override;

  const MainParts& GetParts() const { return Parts; }
  CFilmstrip& GetStrip() const;

 protected:
  /// What goes away, or is disabled, leaves the focus to the window, not to the next part.
  bool focusNextPrevChild(bool next) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void CreateParts();
  void CreatePhotoBack();
  void CreatePages();
  void CreateToolRow(TabPage& page);
  /// The photo's file or its name is another now.
  void RefreshInTabs(std::int32_t assetId);
  void OnThumbnailsRemade(const std::vector<std::int32_t>& photos);
  void Run(CommandId id);
  /// A key of that command was pressed, or is being held.
  void OnKey(const Command& command, bool isRepeat);
  void OnTabChanged();
  /// Gives the buttons of the current photo's page the states that fit now.
  void UpdateCommands();
  void OnStampChanged(StampId type);
  /// Lets the photos beside the current one be decoded ahead.
  void LookAhead();
  /// Of the current photo, as it was decoded; 0 by 0 without a picture.
  ImageSize GetPictureSize() const;
  bool IsEditing() const;
  void OnSpace(bool backward, bool isRepeat);

  CCatalog Catalog;
  CThumbnailCache ThumbnailCache;
  MainParts Parts;
  CMainCommands Commands;
  std::unique_ptr<CFullScreenTools> FullScreenTools;
  std::unique_ptr<CInputFilter> InputFilter;
  std::unique_ptr<CThumbnailCheck> ThumbnailCheck;
  CPathsToShow PathsToShow{*this};
  const CViewMode* Mode;
  CLeastSize LeastSize{*this};
  bool TipAsked = false;
  bool Closing = false;
  bool SpaceStopsShow = false;  // the press of the space key that is being held
  int LastIndex = 0;            // in the set, of the photo that was announced last
  int WheelTravel = 0;          // eighths of a degree that haven't moved the strip yet
};
