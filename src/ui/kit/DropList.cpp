#include "ui/kit/DropList.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/OutsideClicks.h"
#include "ui/kit/PopupShadow.h"

namespace {

constexpr int kTextInset = 8;
constexpr QColor kFrameColour(91, 96, 106);
constexpr QColor kGround(255, 255, 255);

/// Dots, one on, one off, as large as a pixel of the layout.
void DrawDots(CDevicePainter& painter, const QRect& line) {
  painter.Fill(line, kGround);
  const int side = line.height();
  for (int x = line.left() + side; x <= line.right(); x += 2 * side) {
    painter.Fill(QRect(x, line.top(), side, side) & line, colours::kWindow);
  }
}

}  // namespace

CDropList::CDropList(QWidget& control, const DropImages& images, bool shortensPaths)
    : QWidget(&control, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
      Control(control),
      Images(images),
      ShortensPaths(shortensPaths) {
  setObjectName(QStringLiteral("DropList"));
  setAttribute(Qt::WA_X11NetWmWindowTypeDropDownMenu);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  PassOnOutsideClicks(*this, control);
}

void CDropList::Open(std::vector<Row> rows, int current, int rowHeight) {
  Rows = std::move(rows);
  Current = current;
  HotRow = -1;
  Opened = true;
  Layout = {static_cast<int>(Rows.size()), rowHeight, GetDropListWidth(MeasureWidest(), Control.width())};
  Place();
  setAccessibleName(Control.accessibleName());
  show();
}

void CDropList::Place() {
  const QRect control(Control.mapToGlobal(QPoint()), Control.size());
  QRect place = PlaceDropList(control, Layout.GetSize(), Control.screen()->availableGeometry());
  QWidget& behind = *Control.window();
  const QPoint corner = behind.mapToGlobal(QPoint());
  place.setSize(place.size() + GetPopupShadowRoom(place, QRect(corner, behind.size())));
  Backdrop = GrabShadowedBackdrop(behind, place.translated(-corner), Layout.GetSize());
  setGeometry(place);
}

double CDropList::MeasureWidest() const {
  double widest = 0;
  for (const Row& row : Rows) widest = std::max(widest, MeasureDropText(row.Text, GetStyle(row, false)));
  return widest;
}

DropTextStyle CDropList::GetStyle(const Row& row, bool hot) const {
  return {row.Font, colours::kInk, Images, hot, ShortensPaths};
}

void CDropList::SetHotRow(int row) {
  if (row == HotRow) return;
  HotRow = row;
  setAccessibleDescription(row < 0 ? QString()
                                   : SplitDropText(Rows[static_cast<std::size_t>(row)].Text).Text.trimmed());
  update();
}

void CDropList::MoveHotRow(int step) {
  SetHotRow(StepRow(HotRow >= 0 ? HotRow : Current, step, Layout.RowCount));
}

void CDropList::Pick(int row) {
  const bool wasOpen = std::exchange(Opened, false);
  hide();
  if (wasOpen && OnClosed) OnClosed(row);
}

bool CDropList::event(QEvent* event) {
  // Every key is the list's while it shows, also those that are shortcuts.
  if (event->type() == QEvent::ShortcutOverride) {
    event->accept();
    return true;
  }
  return QWidget::event(event);
}

void CDropList::mousePressEvent(QMouseEvent* event) {
  const QPoint point = event->position().toPoint();
  if (QRect(QPoint(), Layout.GetSize()).contains(point)) return SetHotRow(Layout.FindRow(point));
  Pick(-1);
}

void CDropList::mouseMoveEvent(QMouseEvent* event) { SetHotRow(Layout.FindRow(event->position().toPoint())); }

void CDropList::mouseReleaseEvent(QMouseEvent* event) {
  // The button may have been pressed on the control. Then only a row that the pointer has moved to counts.
  const int row = Layout.FindRow(event->position().toPoint());
  if (event->button() == Qt::LeftButton && row >= 0 && row == HotRow) Pick(row);
}

void CDropList::leaveEvent(QEvent*) { SetHotRow(-1); }

void CDropList::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Up:
      return MoveHotRow(-1);
    case Qt::Key_Down:
      return MoveHotRow(1);
    case Qt::Key_Home:
      return SetHotRow(0);
    case Qt::Key_End:
      return SetHotRow(Layout.RowCount - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Pick(HotRow);
    case Qt::Key_Escape:
      return Pick(-1);
    default:
      return;
  }
}

void CDropList::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  Pick(-1);  // closed by the system
}

void CDropList::PaintRow(CDevicePainter& painter, int index) const {
  const Row& row = Rows[static_cast<std::size_t>(index)];
  const bool hot = index == HotRow;
  const QRect area = Layout.GetRow(index);
  painter.Fill(painter.Scaled(area), hot ? colours::kSelection : kGround);
  DrawDropText(painter, painter.Scaled(area.adjusted(kTextInset, 0, -kTextInset, -1)), row.Text,
               GetStyle(row, hot));
  if (index + 1 == Layout.RowCount) return;
  const int thickness = painter.Scaled(1);
  QRect line = painter.Scaled(area);
  line.setTop(line.bottom() + 1 - thickness);
  row.LineBelow ? painter.Fill(line, colours::kInk) : DrawDots(painter, line);
}

void CDropList::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  painter.Draw({}, Backdrop);
  painter.Fill(painter.Scaled(QRect(QPoint(), Layout.GetSize())), kFrameColour);
  for (int row = 0; row < Layout.RowCount; ++row) PaintRow(painter, row);
}
