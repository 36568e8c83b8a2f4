#include "ui/strip/Filmstrip.h"

#include <QPaintEvent>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "base/Texts.h"
#include "sets/PhotoSet.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kRestDelay{50};  // before a photo that rests is told of
constexpr milliseconds kShowInterval{2000};

}  // namespace

CFilmstrip::CFilmstrip(CFilmstripHost& host, QWidget& parent)
    : QWidget(&parent),
      Host(host),
      Cells([this](const std::string& folder) { return Host.GetFolderLabel(folder); }),
      Bars(
          *this,
          [this](int index) {
            StopSlideShow();
            MoveTo(index);
          },
          [this](int index) { return IsJobRunning() ? QString() : ToQString(Cells.GetLabel(index)); }),
      Lens(*this, [this](CommandId id, bool isRepeat) {
        if (!isRepeat) FinishMove();  // every click counts
        Host.OnCommand(id);
      }) {
  setObjectName(QStringLiteral("Strip"));
  setAccessibleName(QStringLiteral("Filmstrip"));
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
  Set = set;
  Cells.SetPhotoSet(set);
  Cache.Clear();
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
  Cache.Clear();
  CurrentRecord.reset();
  RestingId = -1;
  Current = 0;
  ShowAll(false);
  StopSlideShow();
  setAccessibleDescription({});
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
      Cells.SetMetrics(layout.GetMetrics());
      Cache.SetForm(layout.GetMetrics(), layout.GetVisibleCount());
    }
    Layout = layout;
    PrepareCells();
  }
  Bars.Place(Layout);
  Lens.Place(Layout);
}

void CFilmstrip::ExtendCache(int count, CacheSide side) {
  const int base = GetBase();
  Cache.Extend(count, side, [&](CDevicePainter& painter, int slotLeft, int distance) {
    const int index = base + distance;
    Cells.PaintCell(painter, slotLeft + Layout.GetMetrics().SeparatorWidth, index, GetHotMark(index));
  });
}

void CFilmstrip::PrepareCells() {
  if (WaitsForJob()) return;
  if (!isVisible() || Slide || Cache.GetImage().isNull() || !IsIndex(Current)) return;
  for (const CacheSide side : {CacheSide::Before, CacheSide::After}) {
    ExtendCache(Cache.GetRun().GetMissing(side, 0), side);
  }
  IdleTimer.start();
  update();
}

void CFilmstrip::FillOneCell() {
  if (WaitsForJob()) return;
  std::optional<CacheSide> side;
  if (isVisible() && !Slide && IsIndex(Current)) side = Cache.GetRun().FindIdleSide(Current, Set->GetCount());
  if (!side) return IdleTimer.stop();
  ExtendCache(1, *side);
}

void CFilmstrip::ShowPosition(double percent) { Bars.SetPosition({percent, Current, Set->GetCount()}); }

// Changes of a photo.

void CFilmstrip::RedrawCurrentThumbnail() {
  FinishMove();
  Cache.Repaint(0, [&](CDevicePainter& painter, int left) { Cells.PaintPhoto(painter, left, Current); });
  update();
}

void CFilmstrip::RedrawBand(int index, int icon) {
  RepaintMarks(index);
  if (icon != kBandAndMarks) return;
  Cache.Repaint(index - GetBase(),
                [&](CDevicePainter& painter, int left) { Cells.PaintLabel(painter, left, index); });
}

void CFilmstrip::StampChanged(StampId type, std::int32_t assetId) {
  if (Set == nullptr || !DependsOn(Set->GetSortKind(), type)) return;
  if (const int index = Set->IndexOf(assetId); index >= 0) RedrawBand(index, kBandAndMarks);
}

// The window.

bool CFilmstrip::event(QEvent* event) {
  // Told when the window has come to another screen, which may have another pixel ratio.
  if (event->type() == QEvent::ScreenChangeInternal) UpdateLayout();
  return QWidget::event(event);
}

void CFilmstrip::showEvent(QShowEvent*) {
  UpdateLayout();
  PrepareCells();
}

void CFilmstrip::hideEvent(QHideEvent*) {
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
}
