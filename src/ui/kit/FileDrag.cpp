#include "ui/kit/FileDrag.h"

#include <QApplication>
#include <QDrag>
#include <QImage>
#include <QMimeData>
#include <QMouseEvent>
#include <QPixmap>
#include <QScopedValueRollback>
#include <QWidget>
#include <memory>

#include "ui/kit/Job.h"
#include "ui/kit/OpenAddress.h"
#include "ui/kit/Pictures.h"

namespace {

constexpr QSize kPicture(140, 105);

bool DragRuns = false;

}  // namespace

bool CFileDrag::BeginsWith(const QMouseEvent& move) {
  if (!move.buttons().testFlag(Qt::LeftButton)) Forget();
  if (!Pressed || IsJobRunning()) return false;
  const QPoint way = move.position().toPoint() - *Pressed;
  if (way.manhattanLength() < QApplication::startDragDistance()) return false;
  Forget();
  return true;
}

void CFileDrag::Run(const std::string& path, const CImage* picture) const {
  auto data = std::make_unique<QMimeData>();
  data->setData(QStringLiteral("text/uri-list"), QByteArray::fromStdString(GetAddressOfFile(path)) + "\r\n");
  auto* const drag = std::make_unique<QDrag>(&Source).release();  // goes with the source, or when it is over
  drag->setMimeData(data.release());                              // is the drag's
  if (picture != nullptr) {
    const double ratio = Source.devicePixelRatioF();
    const QPixmap shown = QPixmap::fromImage(FitToImage(*picture, kPicture, ratio, Enlarging::Never));
    drag->setPixmap(shown);
    drag->setHotSpot(QRect(QPoint(), shown.deviceIndependentSize().toSize()).center());
  }
  const QScopedValueRollback<bool> running(DragRuns, true);
  drag->exec(Qt::CopyAction);
}

bool CFileDrag::IsRunning() { return DragRuns; }
