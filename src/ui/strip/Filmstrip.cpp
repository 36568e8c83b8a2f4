#include "ui/strip/Filmstrip.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPointer>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "base/Texts.h"
#include "imaging/Image.h"
#include "sets/PhotoSet.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/Job.h"
#include "ui/kit/KeyFocus.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"
#include "ui/marks/PhotoMarks.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kRestDelay{50};  // before a photo that rests is told of
constexpr milliseconds kShowInterval{2000};

constexpr double kSlideSpeed = 1000;  // pixels of the layout a second
constexpr double kFocusWidth = 3;
constexpr int kShortestFrame = 4;            // milliseconds
constexpr milliseconds kLongestCatchUp{50};  // of a slide that follows another one late

}  // namespace

CFilmstrip::CFilmstrip(CFilmstripHost& host, QWidget& parent)
    : QWidget(&parent),
      Host(host),
      Cache([this](const std::string& folder) { return Host.GetFolderLabel(folder); }),
      Bars(
          *this,
          [this](int index) {
            StopSlideShow();
            MoveTo(index);
          },
          [this](int index) { return IsJobRunning() ? QString() : ToQString(Cache.GetLabel(index)); }),
      Lens(*this,
           [this](CommandId id, bool isRepeat) {
             if (!isRepeat) FinishMove();  // every click counts
             Host.OnCommand(id);
           }),
      SharpPictures([this](std::int32_t assetId, const QImage& picture) { ShowSharp(assetId, picture); },
                    [this] { PrepareCells(); }) {
  setObjectName(QStringLiteral("Strip"));
  setAccessibleName(ToQString(LoadText(StringId::ToldFilmstrip)));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::NoFocus);
  setMouseTracking(true);
  hide();
  ConnectTimers();
}

void CFilmstrip::ConnectTimers() {
  SlideTimer.setTimerType(Qt::PreciseTimer);
  PaceTimer.setTimerType(Qt::PreciseTimer);
  PaceTimer.setSingleShot(true);
  RestTimer.setTimerType(Qt::PreciseTimer);
  RestTimer.setSingleShot(true);
  RestTimer.setInterval(kRestDelay);
  ShowTimer.setInterval(kShowInterval);
  IdleTimer.setInterval(0);
  connect(&SlideTimer, &QTimer::timeout, this, [this] { StepSlide(); });
  connect(&PaceTimer, &QTimer::timeout, this, [this] {
    if (!WaitsForJob()) MoveBy(std::exchange(PendingDelta, 0));
  });
  connect(&RestTimer, &QTimer::timeout, this, [this] { Announce(); });
  connect(&ShowTimer, &QTimer::timeout, this, [this] { StepSlideShow(); });
  connect(&IdleTimer, &QTimer::timeout, this, [this] { FillOneCell(); });
}

bool CFilmstrip::WaitsForJob() {
  if (!IsJobRunning()) return false;
  for (QTimer* const timer : {&SlideTimer, &RestTimer, &ShowTimer, &IdleTimer}) timer->stop();
  if (!std::exchange(Waiting, true)) {
    RunAfterJob([strip = QPointer<CFilmstrip>(this)] {
      if (strip) strip->GoOnAfterJob();
    });
  }
  return true;
}

void CFilmstrip::GoOnAfterJob() {
  Waiting = false;
  if (!underMouse()) ClearHighlight();
  UpdateLayout();
  PrepareCells();
  if (WaitsForJob()) return;  // the next one
  if (Slide) SlideTimer.start();
  if (PhotoIsDue) RestTimer.start();
  if (SlideShowRuns) ShowTimer.start();
}

bool CFilmstrip::IsIndex(int index) const { return Set != nullptr && index >= 0 && index < Set->GetCount(); }

// The set.

void CFilmstrip::SetPhotoSet(CPhotoSet* set) {
  DropSlide();
  SharpPictures.GiveUp();
  Set = set;
  Cache.SetPhotoSet(set);
  if (set != nullptr) {
    Current = std::max(0, set->GetCount() - 1);
    return Refresh(kKeepPhoto);
  }
  CancelAnnouncement();
  ShowTimer.stop();
  IdleTimer.stop();
  SlideShowRuns = false;
  CurrentRecord.reset();
  RestingId = -1;
  ShowAll(false);
}

void CFilmstrip::Refresh(int position) {
  if (Set == nullptr) return;
  DropSlide();
  SharpPictures.GiveUp();
  if (Set->GetCount() == 0) return SetEmpty();
  ShowAll(true);
  int index = position;
  if (position == kKeepPhoto) index = RestingId != -1 ? Set->IndexOf(RestingId) : -1;
  if (!IsIndex(index)) index = Set->GetSortKind() == SortKind::Month ? Set->GetCount() - 1 : 0;
  CurrentRecord.reset();
  MoveTo(index);
}

void CFilmstrip::SetEmpty() {
  CancelAnnouncement();
  Cache.Clear(0);
  CurrentRecord.reset();
  RestingId = -1;
  Current = 0;
  ShowAll(false);
  StopSlideShow();
  TellItems();
  Host.OnCurrentPhotoChanged(nullptr);
}

void CFilmstrip::ShowAll(bool shown) {
  setVisible(shown);
  Bars.SetVisible(shown);
  Lens.SetVisible(shown);
  parentWidget()->update();
}

CAssetRecord* CFilmstrip::GetCurrentRecord() {
  FinishMove();
  if (Set == nullptr) return nullptr;
  if (!CurrentRecord) CurrentRecord = Set->GetAsset(Current);
  return CurrentRecord->IsValid() ? &*CurrentRecord : nullptr;
}

void CFilmstrip::RemoveCurrent() {
  DropSlide();
  if (!IsIndex(Current)) return;
  Set->RemoveAt(Current);
  if (Current == Set->GetCount()) Set->SetGuest(-1);
  CurrentRecord.reset();
  RestingId = -1;
  if (Set->GetCount() == 0) return Refresh(kKeepPhoto);
  MoveTo(std::min(Current, Set->GetCount() - 1));
}

// The cache.

void CFilmstrip::SetWidth(int width) {
  LayoutWidth = width;
  UpdateLayout();
}

void CFilmstrip::UpdateLayout() {
  if (WaitsForJob()) return;
  const double ratio = devicePixelRatioF();
  const StripLayout layout(ratio, ToDevicePixels(LayoutWidth, ratio));
  if (layout != Layout || Cache.GetImage().isNull()) {
    FinishMove();
    ClearHighlight();
    if (layout.GetMetrics() != Layout.GetMetrics() || layout.GetVisibleCount() != Layout.GetVisibleCount() ||
        Cache.GetImage().isNull()) {
      SharpPictures.GiveUp();
      Cache.SetForm(layout.GetMetrics(), layout.GetVisibleCount());
    }
    Layout = layout;
    PrepareCells();
  }
  Bars.Place(Layout);
  Lens.Place(Layout);
}

void CFilmstrip::PrepareCells() {
  if (WaitsForJob()) return;
  if (!isVisible() || Slide || Cache.GetImage().isNull() || !IsIndex(Current)) return;
  for (const CacheSide side : {CacheSide::Before, CacheSide::After}) {
    Cache.Extend(Cache.GetRun().GetMissing(side, 0), side);
  }
  IdleTimer.start();
  update();
}

void CFilmstrip::FillOneCell() {
  if (WaitsForJob()) return;
  std::optional<CacheSide> side;
  if (isVisible() && !Slide && IsIndex(Current)) side = Cache.GetRun().FindIdleSide(Current, Set->GetCount());
  if (side) return Cache.Extend(1, *side);
  IdleTimer.stop();
  SharpenCells();
}

void CFilmstrip::SharpenCells() {
  const double ratio = Layout.GetMetrics().PixelRatio;
  const bool isAtRest = isVisible() && !Slide && !PhotoIsDue && !IdleTimer.isActive() && IsIndex(Current);
  if (ratio <= 1 || !isAtRest || WaitsForJob()) return;
  std::vector<PictureWish> wishes;
  for (const int index : Cache.ListSoftCells(Layout.GetLensCell())) {
    const CAssetRecord photo = Set->GetAsset(index);
    if (photo.IsValid()) {
      wishes.push_back({photo.GetAssetID(), photo.GetPath(), {kThumbnailWidth, kThumbnailHeight}});
    }
  }
  SharpPictures.Prepare(std::move(wishes), ratio);
}

void CFilmstrip::ShowSharp(std::int32_t assetId, const QImage& picture) {
  for (const int index : Cache.ListSoftCells(Layout.GetLensCell())) {
    if (Set->GetAssetId(index) == assetId) Cache.PaintSharp(index, picture);
  }
  update();
}

void CFilmstrip::ShowPosition(double percent) { Bars.SetPosition({percent, Current, Set->GetCount()}); }

// Changes of a photo.

void CFilmstrip::RedrawCurrentThumbnail() {
  FinishMove();
  SharpPictures.GiveUp();
  Cache.RepaintPhoto(Current);
  if (isVisible()) IdleTimer.start();
  update();
}

void CFilmstrip::RedrawThumbnails(const CAssetIdSet& photos) {
  if (Set == nullptr) return;
  FinishMove();
  const int first = Current - Cache.GetRun().GetBefore();
  const int end = Current + Cache.GetRun().GetAfter();
  for (int index = first; index < end; ++index) {
    if (photos.Contains(Set->GetAssetId(index))) Cache.RepaintPhoto(index);
  }
  update();
}

void CFilmstrip::RedrawBand(int index, int icon) {
  Cache.RepaintMarks(index);
  if (icon == kBandAndMarks) Cache.RepaintLabel(index);
  update();
}

void CFilmstrip::RedrawMarks(const CAssetIdSet& photos) {
  if (Set == nullptr) return;
  const int first = Current - Cache.GetRun().GetBefore();
  const int end = Current + Cache.GetRun().GetAfter();
  for (int index = first; index < end; ++index) {
    if (!photos.Contains(Set->GetAssetId(index))) continue;
    Cache.RepaintMarks(index);
    TellPhoto(index);
  }
  update();
}

void CFilmstrip::StampChanged(StampId type, std::int32_t assetId) {
  const int index = Set != nullptr ? Set->IndexOf(assetId) : -1;
  if (index < 0) return;
  TellPhoto(index);
  if (DependsOn(Set->GetSortKind(), type)) RedrawBand(index, kBandAndMarks);
}

// The window.

bool CFilmstrip::event(QEvent* event) {
  // Sent when the window has moved to another screen, which may have another pixel ratio.
  if (event->type() == QEvent::ScreenChangeInternal) UpdateLayout();
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  ShowWholeText(static_cast<QHelpEvent&>(*event));
  return true;
}

void CFilmstrip::ShowWholeText(QHelpEvent& event) {
  const bool atRest = !Slide && !IsJobRunning();
  const StripHit hit = atRest ? HitTestAt(event.pos()) : StripHit();
  const bool onText = hit.Cell >= 0 && hit.Mark < 0;
  const QString tip = onText ? Cache.FindCutText(IndexOfCell(hit.Cell), hit.InBand) : QString();
  AnswerToolTip(event, tip, *this, {event.pos(), QSize(1, 1)});
}

void CFilmstrip::showEvent(QShowEvent*) {
  UpdateLayout();
  PrepareCells();
}

void CFilmstrip::hideEvent(QHideEvent*) {
  SharpPictures.GiveUp();
  if (WaitsForJob()) return;
  if (Slide) {
    DropSlide();
    ShowPosition(GetRestPercent(Current, Set->GetCount()));
    PhotoIsDue = true;
    RestTimer.start();
  }
  ClearHighlight();
}

void CFilmstrip::moveEvent(QMoveEvent*) {
  Bars.Place(Layout);
  Lens.Place(Layout);
}

void CFilmstrip::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  const int source = Layout.GetSourceLeft(SlideOffset, Cache.GetRun().GetBefore());
  const QRect wanted(source, 0, painter.GetArea().width(), painter.GetArea().height());
  const QRect held = Cache.GetHeldArea() & wanted;
  if (held != wanted) painter.Fill(painter.GetArea(), colours::kWindow);
  if (!held.isEmpty()) {
    painter.GetPainter().drawImage(held.topLeft() - wanted.topLeft(), Cache.GetImage(), held);
  }
  // The keys of the window move the strip.
  if (ShowsFocus(*window())) {
    const int left = Layout.GetCellLeft(Layout.GetLensCell());
    DrawSelectionFrame(painter, Layout.GetMetrics().PictureAreaAt(left), kFocusWidth);
  }
}

// Moves along the set.

void CFilmstrip::MoveBy(int delta) {
  ClearHighlight();
  if (delta == 0) return;
  if (Slide || PaceTimer.isActive()) {
    const bool sameWay = (delta < 0) == (PendingDelta < 0);
    if (!sameWay || std::abs(delta) > std::abs(PendingDelta)) PendingDelta = delta;
    return;
  }
  if (!IsIndex(Current + delta)) return;
  if (!isVisible()) return MoveUnseen(delta);
  if (!Cache.GetRun().CanShowMove(delta)) return MoveTo(Current + delta);
  StartSlide(delta, std::nullopt);
}

void CFilmstrip::MoveUnseen(int delta) {
  MoveTo(Current + delta);  // the host hears of every photo, since nothing else shows where a held key is
  PaceTimer.start(milliseconds(std::lround(1000 * std::abs(delta) * Layout.GetMetrics().Pitch /
                                           (kSlideSpeed * Layout.GetMetrics().PixelRatio))));
}

void CFilmstrip::MovePage(bool backward) {
  if (Set == nullptr || Set->GetCount() == 0) return;
  const int from = Slide ? Slide->GetTarget() : Current;
  const int page = backward ? -Layout.GetVisibleCount() : Layout.GetVisibleCount();
  MoveBy(std::clamp(from + page, 0, Set->GetCount() - 1) - from);
}

void CFilmstrip::MoveTo(int index) {
  ClearHighlight();
  if (!IsIndex(index)) return;
  DropSlide();
  if (index == Current && CurrentRecord) return;
  SharpPictures.GiveUp();
  CancelAnnouncement();
  Current = index;
  RestingId = Set->GetAssetId(index);
  CurrentRecord.reset();
  Cache.Clear(index);
  PrepareCells();
  ShowPosition(GetRestPercent(Current, Set->GetCount()));
  parentWidget()->repaint();
  Announce();
}

void CFilmstrip::StartSlide(int delta, std::optional<Clock::time_point> begin) {
  CancelAnnouncement();
  IdleTimer.stop();
  SharpPictures.GiveUp();
  RestingId = Set->GetAssetId(Current + delta);
  const CacheSide side = delta < 0 ? CacheSide::Before : CacheSide::After;
  Cache.Extend(Cache.GetRun().GetMissing(side, delta), side);
  const StripMetrics& metrics = Layout.GetMetrics();
  Slide.emplace(Current, delta, metrics.Pitch, kSlideSpeed * metrics.PixelRatio,
                begin.value_or(Clock::now()));
  const CAssetRecord target = Set->GetAsset(Current + delta);
  Host.OnSlideBegins(begin ? nullptr : &target);
  const double framesPerSecond = screen()->refreshRate();
  SlideTimer.start(framesPerSecond > 0 ? std::max(kShortestFrame, static_cast<int>(1000 / framesPerSecond))
                                       : kShortestFrame);
}

void CFilmstrip::StepSlide() {
  if (WaitsForJob()) return;
  if (!Slide) return;
  const Clock::time_point now = Clock::now();
  if (const Clock::time_point end = Slide->GetEnd(); now >= end) {
    const int next = std::exchange(PendingDelta, 0);
    ArriveAtTarget();
    if (next == 0 || !IsIndex(Current + next) || !Cache.GetRun().CanShowMove(next)) {
      TakeRest();
      return next != 0 ? MoveBy(next) : AnnounceIfReady();
    }
    StartSlide(next, now - end < kLongestCatchUp ? end : now);
  }
  SlideOffset = Slide->GetOffset(now);
  Current = Slide->GetIndexAt(SlideOffset);
  ShowPosition(GetSlidePercent(Slide->GetStart(), Set->GetCount(), SlideOffset, Layout.GetMetrics().Pitch));
  update();
}

void CFilmstrip::ArriveAtTarget() {
  Current = Slide->GetTarget();
  Cache.MoveBase(Slide->GetDelta());
  Slide.reset();
  SlideOffset = 0;
  CurrentRecord.reset();
}

void CFilmstrip::DropSlide() {
  PaceTimer.stop();
  PendingDelta = 0;
  if (!Slide) return;
  SlideTimer.stop();
  ArriveAtTarget();
}

void CFilmstrip::FinishMove() {
  const bool wasSliding = Slide.has_value();
  DropSlide();
  if (wasSliding) TakeRest();
}

void CFilmstrip::TakeRest() {
  SlideTimer.stop();
  ShowPosition(GetRestPercent(Current, Set->GetCount()));
  PrepareCells();
  if (!SlideShowRuns) {
    PhotoIsDue = true;
    return RestTimer.start();
  }
  parentWidget()->repaint();  // before the host takes its time
  Announce();
}

void CFilmstrip::AnnounceNow() {
  FinishMove();
  if (PhotoIsDue) Announce();
}

void CFilmstrip::AnnounceIfReady() {
  const CAssetRecord* const record = PhotoIsDue ? GetCurrentRecord() : nullptr;
  if (record == nullptr || !Host.ShowsAtOnce(*record)) return;
  parentWidget()->repaint();
  Announce();
}

void CFilmstrip::CancelAnnouncement() {
  RestTimer.stop();
  PhotoIsDue = false;
}

void CFilmstrip::Announce() {
  PhotoIsDue = true;
  if (WaitsForJob()) return;
  CancelAnnouncement();
  const CAssetRecord* const record = GetCurrentRecord();
  TellItems();
  TellCurrentItem();
  Bars.TellPosition();
  Host.OnCurrentPhotoChanged(record);
  SharpenCells();  // after the large photo, which is what the user waits for
}

// Assistive tools.

int CFilmstrip::GetFirstOnView() const { return std::max(0, IndexOfCell(0)); }

int CFilmstrip::CountItems() const {
  if (Set == nullptr || isHidden() || !IsIndex(Current)) return 0;
  return std::min(IndexOfCell(Layout.GetVisibleCount()), Set->GetCount()) - GetFirstOnView();
}

int CFilmstrip::GetItemKey(int item) const { return Set->GetAssetId(GetFirstOnView() + item); }

PaintedItem CFilmstrip::DescribeItem(int item) const {
  const int index = GetFirstOnView() + item;
  const CAssetRecord photo = Set->GetAsset(index);
  std::string name = photo.GetTitle();
  name += ", " + FormatString(StringId::PositionOfCount, index + 1, Set->GetCount());
  if (const std::string marks = DescribeMarks(photo); !marks.empty()) name += ", " + marks;
  return {ToQString(name), {}};
}

QRect CFilmstrip::PlaceItem(int item) const {
  const QRectF frame = Layout.GetCellFrame(GetFirstOnView() + item - IndexOfCell(0));
  const double ratio = Layout.GetMetrics().PixelRatio;
  return QRectF(frame.topLeft() / ratio, frame.size() / ratio).toAlignedRect();
}

void CFilmstrip::ActivateItem(int item) {
  StopSlideShow();
  MoveTo(GetFirstOnView() + item);
}

std::vector<GroupPart> CFilmstrip::ListSurroundings() const {
  std::vector<GroupPart> parts = Bars.ListParts();
  for (const GroupPart& button : Lens.ListButtons()) parts.push_back(button);
  return parts;
}

void CFilmstrip::TellPhoto(int index) {
  const int item = index - GetFirstOnView();
  if (item >= 0 && item < CountItems()) TellItemName(item);
}

// The slide show.

bool CFilmstrip::StartSlideShow() {
  if (SlideShowRuns) return true;
  FinishMove();
  if (Set == nullptr || Set->GetCount() == 0) return false;
  if (Current == Set->GetCount() - 1) {
    MoveTo(0);
  } else {
    MoveBy(1);
  }
  ShowTimer.start();
  SlideShowRuns = true;
  Host.OnSlideShowStateChanged();
  return true;
}

void CFilmstrip::StopSlideShow() {
  if (!SlideShowRuns) return;
  ShowTimer.stop();
  SlideShowRuns = false;
  Host.OnSlideShowStateChanged();
}

void CFilmstrip::StepSlideShow() {
  if (WaitsForJob()) return;
  // The show pauses while a message box is open.
  if (!SlideShowRuns || Set == nullptr || QApplication::activeModalWidget() != nullptr) return;
  FinishMove();
  if (Current < Set->GetCount() - 1) return MoveBy(1);
  MoveTo(0);
  if (SlideShowRuns) ShowTimer.start();
}

// The mouse. No event is taken: the main window gets the focus by every click.

StripHit CFilmstrip::HitTestAt(QPointF point) const {
  const QPointF pixel = point * Layout.GetMetrics().PixelRatio;
  StripHit hit =
      Layout.HitTest({static_cast<int>(std::floor(pixel.x())), static_cast<int>(std::floor(pixel.y()))});
  return hit.Cell >= 0 && IsIndex(IndexOfCell(hit.Cell)) ? hit : StripHit();
}

void CFilmstrip::mousePressEvent(QMouseEvent* event) {
  event->ignore();
  if (event->button() != Qt::LeftButton) return;
  FinishMove();
  Drag.Forget();
  const StripHit hit = HitTestAt(event->position());
  if (hit.Mark >= 0) return ToggleMark(hit, event->modifiers().testFlag(Qt::ShiftModifier));
  if (hit.Cell == Layout.GetLensCell() && !hit.InBand) Drag.Press(event->position().toPoint());
  if (hit.Cell < 0 || hit.InBand || hit.Cell == Layout.GetLensCell()) return;
  StopSlideShow();
  MoveBy(hit.Cell - Layout.GetLensCell());
}

void CFilmstrip::mouseDoubleClickEvent(QMouseEvent* event) {
  event->ignore();
  if (event->button() != Qt::LeftButton) return;
  const StripHit hit = HitTestAt(event->position());
  // On a mark two quick clicks are two clicks. Another cell slides away under them, so there they are one.
  if (hit.Mark >= 0) return mousePressEvent(event);
  if (hit.Cell != Layout.GetLensCell() || hit.InBand) return;
  FinishMove();
  Host.SelectTab(ViewTabId::CurrentPhoto);
}

void CFilmstrip::mouseMoveEvent(QMouseEvent* event) {
  event->ignore();
  if (Drag.BeginsWith(*event)) return DragCurrentPhoto();
  if (Slide) return;
  const StripHit hit = HitTestAt(event->position());
  // A press that began elsewhere lights up nothing.
  const bool dragged = event->buttons().testFlag(Qt::LeftButton) && !Cache.HasHotMark();
  SetHighlight(hit.Mark >= 0 && !dragged ? hit : StripHit());
}

void CFilmstrip::DragCurrentPhoto() {
  const CAssetRecord* const record = GetCurrentRecord();
  if (record == nullptr) return;
  StopSlideShow();  // the photo stays under the lens
  const std::string path = record->GetPath();
  Drag.Run(path, record->LoadThumbnail().get());
}

void CFilmstrip::leaveEvent(QEvent*) { ClearHighlight(); }

void CFilmstrip::SetHighlight(StripHit hit) {
  if (IsJobRunning()) return;
  if (Cache.SetHotMark(hit.Mark >= 0 ? IndexOfCell(hit.Cell) : -1, hit.Mark)) update();
}

void CFilmstrip::ToggleMark(const StripHit& hit, bool extendRange) {
  const CAssetRecord photo = Set->GetAsset(IndexOfCell(hit.Cell));
  if (!photo.IsValid()) return;
  Host.ToggleInTab(photo, kPhotoMarks[hit.Mark].Tab, extendRange);
}
