#pragma once

#include <QTimer>
#include <QWidget>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "catalog/AssetRecord.h"
#include "sets/AssetIdSet.h"
#include "ui/kit/Commands.h"
#include "ui/kit/FileDrag.h"
#include "ui/kit/PaintedItems.h"
#include "ui/kit/SharpPictures.h"
#include "ui/strip/Lens.h"
#include "ui/strip/PushBars.h"
#include "ui/strip/Slide.h"
#include "ui/strip/StripCache.h"
#include "ui/strip/StripLayout.h"

class CPhotoSet;

/// What the strip tells and asks the main window. The buttons of its lens send their commands to it, too.
/// Every call comes on the window thread, with the strip in order: the host may call it back.
class CFilmstripHost : public CCommandTarget {
 public:
  /// Another photo rests under the lens, or the same one has to be shown anew; null if there is none. The
  /// record belongs to the strip and lives until its next move.
  virtual void OnCurrentPhotoChanged(const CAssetRecord* record) = 0;

  /// Whether the host has all that it needs to show that photo. It is then told of it as soon as a slide
  /// ends.
  virtual bool ShowsAtOnce(const CAssetRecord& record) const = 0;

  /// A slide to that photo begins; null if it follows another without a rest, so that the strip is likely to
  /// pass that photo, too.
  virtual void OnSlideBegins(const CAssetRecord* target) = 0;

  virtual void OnSlideShowStateChanged() = 0;

  /// A mark of a cell was clicked; with `extendRange` Shift was held.
  virtual void ToggleInTab(const CAssetRecord& photo, ViewTabId tab, bool extendRange) = 0;

  virtual void SelectTab(ViewTabId tab) = 0;

  /// The short name of a folder.
  virtual std::string GetFolderLabel(const std::string& folder) const = 0;
};

/// A strip of film that runs under a fixed magnifier: the current photo of a set is always in the middle
/// cell. It is how the user moves along the set, and the whole window follows it. The cells are painted once,
/// into a cache; a slide only shows other parts of that.
///
/// A slide goes on by itself while events are handled. Whatever else is asked of the strip meanwhile, but
/// for a further MoveBy, ends it on its cell first. While a job owns the data the strip shows what it holds.
///
/// On a dense screen the cells on view are painted a second time once the strip has come to rest, from the
/// photos' files: that under the lens first, then outwards. Any move gives up what isn't begun.
///
/// To assistive tools it is a list of the photos on view. They hear of the current one when it rests.
class CFilmstrip : public QWidget, public CPaintedItems {
 public:
  // What Refresh takes besides an index.
  static constexpr int kKeepPhoto = -1;     // the photo that is current now, if the set still has it
  static constexpr int kStartOfSet = -2;    // the last photo of a set by month, the first of any other
  static constexpr int kBandAndMarks = -1;  // as the icon of RedrawBand

  /// `parent` also gets the lens and the push bars. The host outlives the strip.
  CFilmstrip(CFilmstripHost& host, QWidget& parent);

  /// The set, not owned, which may be null. Goes to the photo that is current now, or else to the set's
  /// start.
  void SetPhotoSet(CPhotoSet* set);
  CPhotoSet* GetPhotoSet() const { return Set; }

  /// To be called after the set has changed, with an index, kKeepPhoto or kStartOfSet.
  void Refresh(int position);

  /// Slides by so many photos; nothing if that leads out of the set. During a slide it is put off to its
  /// end, and only the last direction and the longest way in it count: so a held key can't run ahead. A
  /// hidden strip goes there at once, and puts off what comes in the time of a slide.
  void MoveBy(int delta);
  /// Goes there without a slide and tells the host at once.
  void MoveTo(int index);
  /// Slides by as many photos as can be seen, as far as there are any.
  void MovePage(bool backward);
  /// Ends a slide on its cell, at once, and forgets the move that was put off.
  void FinishMove();
  /// Tells the host of a photo now that it would be told of in a moment. Nothing if there is none.
  void AnnounceNow();

  /// Takes the current photo out of the set, and goes to the next one or, at the end, the one before.
  void RemoveCurrent();

  /// The photo under the lens, valid until the next move; null for none.
  CAssetRecord* GetCurrentRecord();
  /// The position of the photo under the lens; during a slide that which passes by.
  int GetCurrentIndex() const { return Current; }

  // After a change of a photo.

  void RedrawCurrentThumbnail();
  void RedrawThumbnails(const CAssetIdSet& photos);
  /// The marks of a cell and, with kBandAndMarks, its label too.
  void RedrawBand(int index, int icon);
  /// The marks of all cells of these photos.
  void RedrawMarks(const CAssetIdSet& photos);
  /// A stamp of a photo, or its folder (12) or title (13), has another value.
  /// It may be the photo that the strip has just left.
  void StampChanged(StampId type, std::int32_t assetId);

  /// Makes the first step and goes on every two seconds, round and round. False if there is no photo.
  bool StartSlideShow();
  void StopSlideShow();
  bool IsSlideShowRunning() const { return SlideShowRuns; }

  /// The strip's width, in pixels of the layout.
  void SetWidth(int width);

  // Counted since the strip was made.
  int GetPaintedCells() const { return Cache.GetPaintedCells(); }
  int GetReadThumbnails() const { return Cache.GetReadThumbnails(); }
  const StripLayout& GetLayout() const { return Layout; }
  const CStripCache& GetCache() const { return Cache; }
  const CSharpPictures& GetSharpPictures() const { return SharpPictures; }

  // The photos on view, for assistive tools.
  int CountItems() const override;
  int GetItemKey(int item) const override;
  PaintedItem DescribeItem(int item) const override;
  QRect PlaceItem(int item) const override;
  int GetCurrentItem() const override { return CountItems() > 0 ? Current - GetFirstOnView() : -1; }
  void ActivateItem(int item) override;
  /// What stands around the strip.
  std::vector<GroupPart> ListSurroundings() const;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  using Clock = std::chrono::steady_clock;

  void ConnectTimers();
  /// True while a job owns the data; then everything stops, and goes on when it is over.
  bool WaitsForJob();
  void GoOnAfterJob();
  bool IsIndex(int index) const;
  void ShowAll(bool shown);
  void SetEmpty();

  /// `begin` is that of a slide that follows another without a rest; else it begins when the cells are there.
  void StartSlide(int delta, std::optional<Clock::time_point> begin);
  void StepSlide();
  void MoveUnseen(int delta);
  void ArriveAtTarget();
  void DropSlide();
  void TakeRest();
  void Announce();
  void AnnounceIfReady();
  void CancelAnnouncement();
  void StepSlideShow();

  void UpdateLayout();
  void PrepareCells();
  void FillOneCell();
  /// Lets sharp pictures be made of what is on view, if the strip rests and a thumbnail isn't enough.
  void SharpenCells();
  void ShowSharp(std::int32_t assetId, const QImage& picture);
  void ShowPosition(double percent);

  StripHit HitTestAt(QPointF point) const;
  void ShowWholeText(QHelpEvent& event);
  void SetHighlight(StripHit hit);
  int GetFirstOnView() const;
  void TellPhoto(int index);
  int IndexOfCell(int cell) const { return Current + cell - Layout.GetLensCell(); }
  void ClearHighlight() { SetHighlight({}); }
  void DragCurrentPhoto();
  void ToggleMark(const StripHit& hit, bool extendRange);

  CFilmstripHost& Host;
  CPhotoSet* Set = nullptr;
  int Current = 0;
  std::int32_t RestingId = -1;                // of the photo that the strip rests on or slides to
  std::optional<CAssetRecord> CurrentRecord;  // made when it is asked for

  int LayoutWidth = 0;
  StripLayout Layout;
  CStripCache Cache;

  std::optional<CSlide> Slide;
  int SlideOffset = 0;  // device pixels, negative backwards; 0 at rest
  int PendingDelta = 0;
  bool SlideShowRuns = false;
  bool PhotoIsDue = false;  // the host hasn't been told of the photo that the strip rests on
  bool Waiting = false;     // for the end of a job

  QTimer SlideTimer;
  QTimer PaceTimer;  // runs for the time that a slide would take if the strip could be seen
  QTimer RestTimer;
  QTimer ShowTimer;
  QTimer IdleTimer;

  CFileDrag Drag{*this};  // of the photo under the lens
  CPushBars Bars;
  CLens Lens;  // above the bars
  CSharpPictures SharpPictures;
};
