#include "ui/strip/PushBars.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "base/Texts.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/strip/SiblingPainter.h"

namespace {

constexpr int kCap = 12;
constexpr int kRodHeight = 7;
constexpr int kReach = 6;      // how far above and below the pointer still holds it
constexpr int kEndReach = 15;  // and beyond the cap

// The pieces of the picture: left end, middle, right end.
constexpr int kPieceWidth = 12;
constexpr int kPieceHeight = 7;
constexpr int kMiddlePiece = 1;
constexpr int kRightPiece = 2;

constexpr int kLabelLeft = 2;
constexpr int kLongestPosition = 999999;
constexpr int kTipAbove = 15;  // from the bar's top to the tip's

/// A piece of the picture, scaled to the height of the bar.
QPixmap GetPiece(int piece, const CDevicePainter& painter, int height) {
  return GetPicturePart(PictureId::PushBar, {piece * kPieceWidth, 0, kPieceWidth, kPieceHeight},
                        {painter.Scaled(kPieceWidth), height});
}

QString GetPositionText(int position, int count) {
  return ToQString(FormatString(StringId::PositionOfCount, position, count));
}

/// A slider from 1 to the number of photos.
class CPositionFace final : public CLeafFace, public QAccessibleValueInterface {
 public:
  explicit CPositionFace(CPushBar& bar) : CLeafFace(&bar, QAccessible::Slider) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return CLeafFace::interface_cast(type);
  }
  QVariant currentValue() const override { return GetPosition().Current + 1; }
  void setCurrentValue(const QVariant& value) override {
    auto* bar = dynamic_cast<CPushBar*>(object());
    if (bar != nullptr) DoAsClicked(*bar, [bar, index = value.toInt() - 1] { bar->GoTo(index); });
  }
  QVariant minimumValue() const override { return 1; }
  QVariant maximumValue() const override { return GetPosition().Count; }
  QVariant minimumStepSize() const override { return 1; }

 private:
  BarPosition GetPosition() const {
    const auto* bar = dynamic_cast<const CPushBar*>(object());
    return bar != nullptr ? bar->GetPosition() : BarPosition();
  }
};

}  // namespace

double GetRestPercent(int current, int count) { return count > 1 ? current * 100.0 / (count - 1) : 0.0; }

double GetSlidePercent(int start, int count, int offset, int pitch) {
  if (count < 2) return 0.0;
  const double whole = static_cast<double>(count) * pitch;
  return (offset + static_cast<double>(start) / (count - 1) * whole) * 100.0 / whole;
}

int PushBarForm::GetLength() const {
  const int longest = std::max(0, Width - ToDevicePixels(kCap, PixelRatio));
  return static_cast<int>(longest * std::clamp(Percent, 0.0, 100.0) * 0.01);
}

QRect PushBarForm::GetBody() const {
  const int height = ToDevicePixels(kRodHeight, PixelRatio);
  const int top = (Height - height) / 2;
  const int length = GetLength();
  if (Side == BarSide::Left) return {Width - length, top, length, height};
  return {0, top, std::max(0, Width - ToDevicePixels(kCap, PixelRatio) - length), height};
}

QRect PushBarForm::GetCap() const {
  const QRect body = GetBody();
  const int width = ToDevicePixels(kCap, PixelRatio);
  return {Side == BarSide::Left ? body.x() - width : body.x() + body.width(), body.y(), width, body.height()};
}

int PushBarForm::FindTarget(QPoint point, int current, int count) const {
  const bool left = Side == BarSide::Left;
  const int reach = ToDevicePixels(kReach, PixelRatio);
  const int endReach = ToDevicePixels(kEndReach, PixelRatio);

  const QRect cap = GetCap();
  const QRect square(cap.x(), (Height - cap.width()) / 2, cap.width(), cap.width());
  if (square.adjusted(left ? -endReach : 0, -reach, left ? 0 : endReach, reach).contains(point)) {
    return left ? 0 : count - 1;
  }

  const QRect body = GetBody();
  if (body.isEmpty() || !body.adjusted(0, -reach, 0, reach).contains(point)) return -1;
  const double start = left ? 0 : current + 1;
  const double end = left ? current : count;
  const double done = point.x() - body.x();
  const double rest = body.width() - done;
  return std::min(static_cast<int>(std::lround((rest * start + done * end) / body.width())), count - 1);
}

CPushBar::CPushBar(BarSide side, QWidget& strip, Jump jump, Point point)
    : QWidget(strip.parentWidget()),
      Side(side),
      Strip(strip),
      JumpTo(std::move(jump)),
      PointAt(std::move(point)) {
  const bool left = side == BarSide::Left;
  setObjectName(left ? QStringLiteral("PushBarLeft") : QStringLiteral("PushBarRight"));
  setAccessibleName(ToQString(LoadText(StringId::ToldPosition)));
  setFocusPolicy(Qt::NoFocus);
  setMouseTracking(true);
  hide();
}

QAccessibleInterface* CPushBar::MakeFace() { return std::make_unique<CPositionFace>(*this).release(); }

void CPushBar::Place(const QRect& area) {
  Area = area;
  setGeometry(PlaceBySibling(area, Strip));
  update();
}

void CPushBar::SetPosition(const BarPosition& position) {
  const PushBarForm before = GetForm();
  Position = position;
  if (GetForm().GetCap() != before.GetCap()) update();
}

PushBarForm CPushBar::GetForm() const {
  return {Side, devicePixelRatioF(), Area.width(), Area.height(), Position.Percent};
}

void CPushBar::paintEvent(QPaintEvent*) {
  CSiblingPainter painter(*this, Strip);
  painter.Fill(Area, colours::kWindow);
  const PushBarForm form = GetForm();
  const QRect body = form.GetBody().translated(Area.topLeft());
  const QRect cap = form.GetCap().translated(Area.topLeft());
  // Stretched, not drawn anew: during a slide each step has another length.
  if (!body.isEmpty()) {
    painter.GetPainter().drawPixmap(body, GetPiece(kMiddlePiece, painter, body.height()));
  }
  painter.Draw(cap.topLeft(), GetPiece(Side == BarSide::Left ? 0 : kRightPiece, painter, cap.height()));
}

int CPushBar::FindTarget(QPointF point) const {
  const QPoint pixel = ToSiblingPixel(point, *this, Strip) - Area.topLeft();
  return GetForm().FindTarget(pixel, Position.Current, Position.Count);
}

void CPushBar::mousePressEvent(QMouseEvent* event) {
  event->ignore();  // the main window takes the focus
  if (event->button() != Qt::LeftButton) return;
  if (const int target = FindTarget(event->position()); target >= 0) JumpTo(target);
}

void CPushBar::mouseMoveEvent(QMouseEvent* event) {
  event->ignore();
  PointAt(FindTarget(event->position()), mapToParent(event->position().toPoint()));
}

void CPushBar::leaveEvent(QEvent*) { PointAt(-1, {}); }

CPositionLabel::CPositionLabel(QWidget& parent) : QWidget(&parent) {
  setObjectName(QStringLiteral("ScrollPosLabel"));
  setFocusPolicy(Qt::NoFocus);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  const QFontMetrics metrics(GetFont(FontId::Small));
  const QString widest = GetPositionText(kLongestPosition, kLongestPosition);
  const int cell = CFontTable::GetInstance().GetCellHeight(FontId::Small);
  resize(metrics.horizontalAdvance(widest), cell - metrics.descent());
}

void CPositionLabel::SetPosition(int current, int count) {
  const QString text = GetPositionText(current + 1, count);
  if (text == Text) return;
  Text = text;
  update();
}

void CPositionLabel::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  const int flags = Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine | Qt::TextDontClip;
  // The room below the letters is cut off.
  const int descent = QFontMetrics(GetFont(FontId::Small)).descent();
  painter.DrawText(painter.GetArea().adjusted(0, 0, 0, painter.Scaled(descent)), flags,
                   GetFont(FontId::Small), colours::kInk, Text);  // white would hardly show on the grey
}

CPushBars::CPushBars(QWidget& strip, const CPushBar::Jump& jump, LabelOf labelOf)
    : Strip(strip),
      GetLabel(std::move(labelOf)),
      Left(BarSide::Left, strip, jump, [this](int index, QPoint place) { ShowTip(index, place); }),
      Right(BarSide::Right, strip, jump, [this](int index, QPoint place) { ShowTip(index, place); }),
      Label(Right),
      Tip(strip.parentWidget()) {
  Tip.setObjectName(QStringLiteral("PushBarTip"));
  Tip.SetFont(FontId::Band);
  Tip.SetFramed(true);
}

void CPushBars::Place(const StripLayout& layout) {
  Left.Place(layout.GetLeftBar());
  Right.Place(layout.GetRightBar());
  const double ratio = layout.GetMetrics().PixelRatio;
  const QRectF right(layout.GetRightBar());
  const QPointF corner = right.topLeft() / ratio + Strip.pos() - Right.pos();
  const double height = right.height() / ratio;
  Label.move((corner + QPointF(kLabelLeft, height - Label.height())).toPoint());
}

void CPushBars::SetPosition(const BarPosition& position) {
  Left.SetPosition(position);
  Right.SetPosition(position);
  Label.SetPosition(position.Current, position.Count);
}

void CPushBars::TellPosition() {
  if (!QAccessible::isActive()) return;
  QAccessibleValueChangeEvent event(&Right, Right.GetPosition().Current + 1);
  QAccessible::updateAccessibility(&event);
}

std::vector<GroupPart> CPushBars::ListParts() const {
  const QPoint corner = Right.pos() + Label.pos();
  return {{&Right}, {.Text = Label.GetText(), .Place = {corner, Label.size()}}};
}

void CPushBars::SetVisible(bool on) {
  if (!on) Tip.hide();
  Left.setVisible(on);
  Right.setVisible(on);
}

void CPushBars::ShowTip(int index, QPoint place) {
  const QString text = index >= 0 ? GetLabel(index) : QString();
  if (text.isEmpty()) return Tip.hide();
  Tip.SetText(text);
  Tip.ShowAt({place, QSize(1, 1)});  // gives it its size
  const int widest = Strip.parentWidget()->width() - Tip.width();
  Tip.move(std::max(0, std::min(place.x(), widest)), Right.y() - kTipAbove);
  Tip.raise();
}
