#include "ui/controls/DropList.h"

#include <QHelpEvent>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointF>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "ui/kit/ClickFocus.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/ToolTips.h"

namespace {

// The soft shadow of the list. Not every desktop can blend one window over another, so the list carries the
// shadow on a picture of what lies behind it, at its right and its bottom.
constexpr QPointF kShadowOffset(2, 3);
constexpr double kShadowDeviation = 4;  // half the blur
constexpr double kShadowStrength = 0.45;
constexpr int kShadowRoom = 9;  // beyond this it can't be seen

/// The share of an edge's light side that is dark at that distance from it.
double BlurredEdge(double distance) {
  return 0.5 * std::erfc(distance / (kShadowDeviation * std::numbers::sqrt2));
}

/// How much of the shadow's colour shows at a point, 0 to 1, for a list that covers `caster`.
double GetPopupShadowStrength(QPointF point, const QRectF& caster) {
  const QRectF shadow = caster.translated(kShadowOffset);
  const double across = BlurredEdge(shadow.left() - point.x()) * BlurredEdge(point.x() - shadow.right());
  const double down = BlurredEdge(shadow.top() - point.y()) * BlurredEdge(point.y() - shadow.bottom());
  return kShadowStrength * across * down;
}

/// The room that the shadow takes to the right of and below `list`, as far as `behind` reaches; none for a
/// list that reaches beyond that.
QSize GetPopupShadowRoom(const QRect& list, const QRect& behind) {
  if (!behind.contains(list)) return {0, 0};
  return {std::min(behind.right() - list.right(), kShadowRoom),
          std::min(behind.bottom() - list.bottom(), kShadowRoom)};
}

/// The picture of `area` of a window, in its own coordinates, with the shadow of a list of that size in the
/// area's upper left corner.
QPixmap GrabShadowedBackdrop(QWidget& behind, const QRect& area, QSize list) {
  QPixmap backdrop = behind.grab(area);
  const double ratio = backdrop.devicePixelRatio();
  const QRectF caster(0, 0, list.width(), list.height());
  QImage shadow(backdrop.size(), QImage::Format_ARGB32);
  QColor colour = colours::kInk;
  for (int y = 0; y < shadow.height(); ++y) {
    for (int x = 0; x < shadow.width(); ++x) {
      const QPointF point((x + 0.5) / ratio, (y + 0.5) / ratio);
      colour.setAlphaF(caster.contains(point) ? 0.F
                                              : static_cast<float>(GetPopupShadowStrength(point, caster)));
      shadow.setPixelColor(x, y, colour);
    }
  }
  shadow.setDevicePixelRatio(ratio);
  QPainter(&backdrop).drawImage(QPoint(), shadow);
  return backdrop;
}

constexpr int kNarrowestText = 50;
constexpr int kBesideText = 24;  // to the left and the right of the widest text
constexpr int kNarrowerThanControl = 4;
constexpr int kWidest = 400;  // longer texts are shortened

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

int DropListLayout::FindRow(QPoint point) const {
  if (point.x() < kFrame || point.x() >= Width - kFrame || point.y() < kFrame) return -1;
  const int row = (point.y() - kFrame) / RowHeight;
  return row < RowCount ? row : -1;
}

int GetDropListWidth(double widestText, int controlWidth) {
  const int forText = std::max(static_cast<int>(std::ceil(widestText)), kNarrowestText) + kBesideText;
  const int rows = std::max(std::min(forText, kWidest), controlWidth - kNarrowerThanControl);
  return rows + 2 * DropListLayout::kFrame;
}

QRect PlaceDropList(const QRect& control, QSize list, const QRect& screen) {
  QRect place(QPoint(control.left(), control.top() + control.height()), list);
  const int below = screen.bottom() + 1 - place.top();
  const int above = control.top() - screen.top();
  if (list.height() > below && above > below) place.moveTop(control.top() - list.height());
  place.moveTop(std::max(std::min(place.top(), screen.bottom() + 1 - list.height()), screen.top()));
  place.moveLeft(std::max(std::min(place.left(), screen.right() + 1 - list.width()), screen.left()));
  return place;
}

int StepRow(int row, int step, int rowCount) {
  if (rowCount == 0) return -1;
  if (row < 0 && step < 0) row = 0;
  return ((row + step) % rowCount + rowCount) % rowCount;
}

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

void CDropList::Open(std::vector<Row> rows, int current, int rowHeight, bool byKey) {
  FirstKey += CountItems();
  Rows = std::move(rows);
  Current = current;
  HotRow = -1;
  Opened = true;
  Layout = {static_cast<int>(Rows.size()), rowHeight, GetDropListWidth(MeasureWidest(), Control.width())};
  Place();
  setAccessibleName(Control.accessibleName());
  show();
  if (byKey && Layout.RowCount > 0) SetHotRow(std::max(Current, 0));
  TellItems();
  TellCurrentItem();
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
  TellCurrentItem();
  update();
}

PaintedItem CDropList::DescribeItem(int row) const { return {GetText(row), {}}; }

void CDropList::MoveHotRow(int step) {
  SetHotRow(StepRow(HotRow >= 0 ? HotRow : Current, step, Layout.RowCount));
}

QString CDropList::GetText(int row) const {
  return SpellDropText(Rows[static_cast<std::size_t>(row)].Text, Images);
}

void CDropList::FindHotRow(const QString& letter) {
  const int start = HotRow >= 0 ? HotRow : Current;
  for (int step = 1; step <= Layout.RowCount; ++step) {
    const int row = StepRow(start, step, Layout.RowCount);
    if (GetText(row).startsWith(letter, Qt::CaseInsensitive)) return SetHotRow(row);
  }
}

void CDropList::Pick(int row) {
  const bool wasOpen = std::exchange(Opened, false);
  hide();
  if (wasOpen && OnClosed) OnClosed(row);
}

void CDropList::ShowWholeText(QHelpEvent& event) {
  const int index = Layout.FindRow(event.pos());
  if (index < 0) return AnswerToolTip(event, {}, *this, {});
  const Row& row = Rows[static_cast<std::size_t>(index)];
  const QRect area = Layout.GetRow(index);
  const QString tip = FindCutText(row.Text, GetStyle(row, false), area.width() - 2 * kTextInset);
  AnswerToolTip(event, tip, *this, area);
}

bool CDropList::event(QEvent* event) {
  // Every key is the list's while it shows, also those that are shortcuts.
  if (event->type() == QEvent::ShortcutOverride) {
    event->accept();
    return true;
  }
  if (event->type() == QEvent::ToolTip) {
    ShowWholeText(static_cast<QHelpEvent&>(*event));
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
    case Qt::Key_PageUp:
      return SetHotRow(0);
    case Qt::Key_End:
    case Qt::Key_PageDown:
      return SetHotRow(Layout.RowCount - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Pick(HotRow);
    case Qt::Key_Escape:
    case Qt::Key_F4:
      return Pick(-1);
    default:
      if (!event->text().trimmed().isEmpty()) FindHotRow(event->text());
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
