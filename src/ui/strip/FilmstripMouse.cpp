#include <QMouseEvent>
#include <cmath>
#include <utility>

#include "sets/PhotoSet.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/Job.h"
#include "ui/strip/Filmstrip.h"

// What the mouse does in the strip. No event is taken: the main window gets the focus by every click.

namespace {

ViewTabId GetTabOfMark(int mark) { return mark == 0 ? ViewTabId::Upload : ViewTabId::Email; }

}  // namespace

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
  const StripHit hit = HitTestAt(event->position());
  if (hit.Mark >= 0) return ToggleMark(hit, event->modifiers().testFlag(Qt::ShiftModifier));
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
  if (Slide) return;
  const StripHit hit = HitTestAt(event->position());
  // A press that began elsewhere lights up nothing.
  const bool dragged = event->buttons().testFlag(Qt::LeftButton) && Highlight.Mark < 0;
  SetHighlight(hit.Mark >= 0 && !dragged ? hit : StripHit());
}

void CFilmstrip::leaveEvent(QEvent*) { ClearHighlight(); }

void CFilmstrip::SetHighlight(StripHit hit) {
  if (hit == Highlight || IsJobRunning()) return;
  const StripHit before = std::exchange(Highlight, hit);
  if (before.Cell >= 0) RepaintMarks(IndexOfCell(before.Cell));
  if (hit.Cell >= 0) RepaintMarks(IndexOfCell(hit.Cell));
}

int CFilmstrip::GetHotMark(int index) const {
  return Highlight.Cell >= 0 && IndexOfCell(Highlight.Cell) == index ? Highlight.Mark : -1;
}

void CFilmstrip::RepaintMarks(int index) {
  Cache.Repaint(index - GetBase(), [&](CDevicePainter& painter, int left) {
    Cells.PaintMarks(painter, left, index, GetHotMark(index));
  });
  update();
}

void CFilmstrip::ToggleMark(const StripHit& hit, bool extendRange) {
  const int index = IndexOfCell(hit.Cell);
  const CAssetRecord photo = Set->GetAsset(index);
  if (!photo.IsValid()) return;
  Host.ToggleInTab(photo, GetTabOfMark(hit.Mark), extendRange);
  RepaintMarks(index);
}
