#include "ui/kit/KeyFocus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QPainter>
#include <QRegion>
#include <QWidget>
#include <algorithm>
#include <utility>

#include "ui/kit/Application.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"

namespace {

constexpr int kOuterLine = 1;
constexpr int kInnerLine = 2;

bool IsKeyReason(Qt::FocusReason reason) {
  return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
         reason == Qt::ShortcutFocusReason;
}

}  // namespace

CKeyFocus::CKeyFocus() { QCoreApplication::instance()->installEventFilter(this); }

CKeyFocus::~CKeyFocus() { QCoreApplication::instance()->removeEventFilter(this); }

bool CKeyFocus::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress) Show(false);
  // A dialog that opens sends such an event, without a key, to a widget that doesn't have the focus yet.
  const bool isFocused = event->type() == QEvent::FocusIn && watched == QApplication::focusWidget();
  if (isFocused && IsKeyReason(static_cast<QFocusEvent*>(event)->reason())) Show(true);
  return false;
}

void CKeyFocus::Show(bool on) {
  if (std::exchange(Shown, on) == on) return;
  QWidget* const focus = QApplication::focusWidget();
  if (focus == nullptr) return;
  focus->update();
  // The focus of a window may be shown by one of its parts.
  for (QWidget* part : focus->findChildren<QWidget*>()) part->update();
}

bool ShowsFocus(const QWidget& widget) {
  const CApplication* application = CApplication::GetInstance();
  const bool hasFocus = QApplication::focusWidget() == &widget;  // itself, and not a proxy
  return hasFocus && application != nullptr && application->GetKeyFocus().IsShown();
}

void DrawFocusFrame(CDevicePainter& painter, const QRectF& plate, double radius) {
  QPainter& pen = painter.GetPainter();
  pen.save();
  pen.setRenderHint(QPainter::Antialiasing);
  pen.setBrush(Qt::NoBrush);
  const auto draw = [&](const QColor& colour, int outside, int lineWidth) {
    const int width = painter.Scaled(lineWidth);
    const double inset = painter.Scaled(outside) + width / 2.0;
    const double corner = std::max(painter.GetPixelRatio() * radius - inset, 0.0);
    pen.setPen(QPen(colour, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    pen.drawRoundedRect(plate.adjusted(inset, inset, -inset, -inset), corner, corner);
  };
  draw(colours::kInk, 0, kOuterLine);
  pen.setCompositionMode(QPainter::CompositionMode_Multiply);
  draw(colours::kSelection, kOuterLine, kInnerLine);
  pen.restore();
}

void DrawSelectionFrame(CDevicePainter& painter, const QRect& area, double width) {
  const int band = painter.Scaled(width);
  const QRegion inside = area.adjusted(band, band, -band, -band);
  for (const QRect& side : QRegion(area) - inside) painter.Fill(side, colours::kSelection);
}
