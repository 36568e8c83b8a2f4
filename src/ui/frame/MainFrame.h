#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "catalog/Catalog.h"
#include "imaging/ThumbnailCache.h"
#include "ui/pages/PhotoView.h"
#include "ui/strip/Filmstrip.h"

class CPhotoSet;
class CWindowedSearchProgress;

/// What the event loop returns when the main window has been closed, and so the program's exit code after
/// a normal session.
inline constexpr int kNormalExitCode = 1;

/// The main window: the strip below, the current photo above. It owns the two data stores and the set that
/// it shows. Nothing needs to be saved when it is closed, for every change is in the catalog already.
class CMainFrame : public QWidget {
 public:
  /// Opens the data stores; false if the program can't go on.
  using OpenStep = std::function<bool(CCatalog& catalog, CThumbnailCache& cache)>;

  /// Makes the object; nothing is opened and nothing shows.
  CMainFrame();
  ~CMainFrame() override;

  /// Brings up all that must stand before the user sees the window: the data stores, the first search, the
  /// set, the strip. Each long step is a job that `progress` may stop. False if `openDataStores` says so.
  bool Create(const OpenStep& openDataStores, CWindowedSearchProgress& progress);

  /// Shows the window maximized, in front and with the focus.
  void ShowInFront();

  /// True once the user or the system has asked to close, also while that has to wait for a job.
  bool IsClosing() const { return Closing; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void OnCurrentPhotoChanged();
  void ShowNewestRoll();

  CFilmstrip Strip;
  CPhotoView PhotoView;
  std::unique_ptr<CPhotoSet> PhotoSet;
  CCatalog Catalog;
  CThumbnailCache ThumbnailCache;
  bool Closing = false;
  int WheelTravel = 0;  // eighths of a degree that haven't moved the strip yet
};

/// The position in a set, in the order of import, of the first photo of that roll or a later one; the set's
/// count if there is none.
int FindFirstOfRoll(const CPhotoSet& set, std::int32_t rollId);
