#include <QApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "base/Texts.h"
#include "sets/PhotoSet.h"
#include "ui/kit/QtText.h"
#include "ui/strip/Filmstrip.h"

// How the strip moves along its set, by itself and as asked.

namespace {

using std::chrono::milliseconds;

constexpr double kSlideSpeed = 1000;         // pixels of the layout a second
constexpr int kShortestFrame = 4;            // milliseconds
constexpr milliseconds kLongestCatchUp{50};  // of a slide that follows another one late

}  // namespace

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
  MoveTo(Current + delta);  // every photo is told of, for nothing else shows where a held key has come to
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
  CancelAnnouncement();
  Current = index;
  RestingId = Set->GetAssetId(index);
  CurrentRecord.reset();
  Cache.Clear();
  PrepareCells();
  ShowPosition(GetRestPercent(Current, Set->GetCount()));
  parentWidget()->repaint();
  Announce();
}

void CFilmstrip::StartSlide(int delta, std::optional<Clock::time_point> begin) {
  CancelAnnouncement();
  IdleTimer.stop();
  RestingId = Set->GetAssetId(Current + delta);
  const CacheSide side = delta < 0 ? CacheSide::Before : CacheSide::After;
  ExtendCache(Cache.GetRun().GetMissing(side, delta), side);
  const StripMetrics& metrics = Layout.GetMetrics();
  Slide.emplace(Current, delta, metrics.Pitch, kSlideSpeed * metrics.PixelRatio,
                begin.value_or(Clock::now()));
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
      return MoveBy(next);
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

void CFilmstrip::CancelAnnouncement() {
  RestTimer.stop();
  PhotoIsDue = false;
}

void CFilmstrip::Announce() {
  PhotoIsDue = true;
  if (WaitsForJob()) return;
  CancelAnnouncement();
  const CAssetRecord* const record = GetCurrentRecord();
  if (record != nullptr) {
    const std::string position = FormatString(StringId::PositionOfCount, Current + 1, Set->GetCount());
    setAccessibleDescription(ToQString(position + ", " + record->GetFilename()));
  }
  Host.OnCurrentPhotoChanged(record);
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
  // Behind a question about the photo the show stands still.
  if (!SlideShowRuns || Set == nullptr || QApplication::activeModalWidget() != nullptr) return;
  FinishMove();
  if (Current < Set->GetCount() - 1) return MoveBy(1);
  MoveTo(0);
  if (SlideShowRuns) ShowTimer.start();
}
