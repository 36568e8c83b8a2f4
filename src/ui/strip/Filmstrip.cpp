#include "ui/strip/Filmstrip.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <algorithm>

#include "imaging/Image.h"
#include "sets/PhotoSet.h"
#include "ui/kit/Colours.h"
#include "ui/kit/ImageConversion.h"
#include "ui/kit/Job.h"

namespace {

constexpr int kRestDelay = 50;  // milliseconds
constexpr int kSelectionLine = 3;

}  // namespace

CFilmstrip::CFilmstrip(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("Strip"));
  setAccessibleName(QStringLiteral("Filmstrip"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  RestTimer.setSingleShot(true);
  RestTimer.setInterval(kRestDelay);
  connect(&RestTimer, &QTimer::timeout, this, [this] {
    if (OnPhotoRested) OnPhotoRested();
  });
}

int CFilmstrip::GetCount() const { return Set != nullptr ? Set->GetCount() : 0; }

CAssetRecord CFilmstrip::GetCurrentRecord() const {
  return Set != nullptr ? Set->GetAsset(Current) : CAssetRecord();
}

void CFilmstrip::SetPhotoSet(const CPhotoSet* set, int current) {
  Set = set;
  Thumbnails.clear();
  MoveTo(current);
}

void CFilmstrip::MoveTo(int index) {
  Current = std::max(0, std::min(index, GetCount() - 1));
  LoadVisible();
  update();
  RestTimer.start();
}

void CFilmstrip::MovePage(bool backward) {
  const int page = CellsPerPage(width());
  MoveBy(backward ? -page : page);
}

void CFilmstrip::LoadVisible() {
  if (IsJobRunning()) {
    RunAfterJob([strip = QPointer<CFilmstrip>(this)] {
      if (strip) strip->LoadVisible();
    });
    return;
  }
  const CellRange visible = VisibleCells(width(), GetStart(), GetCount());
  std::erase_if(Thumbnails, [&](const auto& entry) { return !visible.Contains(entry.first); });
  for (int cell = visible.First; cell < visible.End; ++cell) {
    if (!Thumbnails.contains(cell)) Thumbnails.emplace(cell, LoadCell(cell));
  }
  update();
}

QPixmap CFilmstrip::LoadCell(int cell) const {
  const std::unique_ptr<CImage> image = Set->GetAsset(cell).LoadThumbnail();
  if (!image) return {};
  return QPixmap::fromImage(
      FitToImage(*image, {kThumbnailWidth, kThumbnailHeight}, devicePixelRatioF(), Enlarging::Never));
}

void CFilmstrip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), colours::kWindow);
  const int start = GetStart();
  for (const auto& [index, thumbnail] : Thumbnails) {
    const QRect cell = CellRect(index, start);
    painter.fillRect(cell.adjusted(1, 1, -1, -1), colours::kCell);
    if (!thumbnail.isNull()) {
      QRect place(QPoint(), thumbnail.deviceIndependentSize().toSize());
      place.moveCenter(ThumbnailBox(cell).center());
      painter.drawPixmap(place, thumbnail);
    }
    if (index != Current) continue;
    QRegion frame = cell.adjusted(1, 1, -1, -1);
    frame -= cell.adjusted(1 + kSelectionLine, 1 + kSelectionLine, -1 - kSelectionLine, -1 - kSelectionLine);
    for (const QRect& line : frame) painter.fillRect(line, colours::kSelection);
  }
}

void CFilmstrip::resizeEvent(QResizeEvent*) { LoadVisible(); }

void CFilmstrip::mousePressEvent(QMouseEvent* event) {
  const int cell = CellAt(event->position().toPoint().x(), GetStart(), GetCount());
  if (cell >= 0 && event->button() == Qt::LeftButton) MoveTo(cell);
  event->ignore();  // the window takes the focus
}
