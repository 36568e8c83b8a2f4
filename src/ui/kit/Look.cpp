#include "ui/kit/Look.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolButton>
#include <memory>

#include "ui/kit/Colours.h"

namespace {

constexpr QColor kDisabledInk(113, 117, 125);
constexpr QColor kOddRow(246, 247, 248);
constexpr QColor kDarkEdge(91, 96, 106);
constexpr QColor kLink(38, 84, 160);

constexpr double kCorner = 2;

QPalette MakePalette() {
  QPalette palette(colours::kInk, colours::kPlate[1], Qt::white, colours::kOutline, colours::kCell,
                   colours::kInk, Qt::white, Qt::white, colours::kPage);
  palette.setColor(QPalette::AlternateBase, kOddRow);
  palette.setColor(QPalette::Midlight, colours::kPhotoBack);
  palette.setColor(QPalette::Shadow, kDarkEdge);
  palette.setColor(QPalette::Highlight, colours::kSelection);
  palette.setColor(QPalette::HighlightedText, colours::kInk);
  palette.setColor(QPalette::ToolTipBase, colours::kTip);
  palette.setColor(QPalette::ToolTipText, colours::kInk);
  palette.setColor(QPalette::PlaceholderText, kDisabledInk);
  palette.setColor(QPalette::Link, kLink);
  palette.setColor(QPalette::LinkVisited, kLink);
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
    palette.setColor(QPalette::Disabled, role, kDisabledInk);
  }
  palette.setColor(QPalette::Disabled, QPalette::Highlight, colours::kCell);
  palette.setColor(QPalette::Disabled, QPalette::Base, colours::kPhotoBack);
  return palette;
}

/// White, with the row under the pointer in yellow whether it can be chosen or not, as in the lists.
QPalette MakeMenuPalette(QPalette palette) {
  for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button}) {
    palette.setColor(role, Qt::white);
  }
  palette.setColor(QPalette::Highlight, colours::kSelection);
  return palette;
}

/// What the program's own buttons have, too: ink around the default one, and yellow inside it around what has
/// the focus. The yellow of the palette alone would hardly show on white.
void DrawFrame(QPainter& painter, const QRect& area, bool focused) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  const auto draw = [&](const QColor& colour, double inset) {
    painter.setPen(colour);
    painter.drawRoundedRect(QRectF(area).adjusted(inset, inset, -inset, -inset), kCorner, kCorner);
  };
  draw(colours::kInk, 0.5);
  if (focused) draw(colours::kSelection, 1.5);
  painter.restore();
}

}  // namespace

CLook::CLook() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

int CLook::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* returnData) const {
  switch (hint) {
    case SH_EtchDisabledText:
    case SH_DialogButtonBox_ButtonsHaveIcons:
      return 0;
    case SH_Menu_Scrollable:  // a long one scrolls rather than fill the screen with columns
      return 1;
    default:
      return QProxyStyle::styleHint(hint, option, widget, returnData);
  }
}

void CLook::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
  const bool isPushButton = qobject_cast<const QPushButton*>(widget) != nullptr;  // its panel shows the focus
  if (element == PE_FrameFocusRect && !isPushButton) {
    // The base style's own is faint, and that of a tool button lies behind its picture.
    const QRect area = qobject_cast<const QToolButton*>(widget) != nullptr ? widget->rect() : option->rect;
    if (option->state.testFlag(State_KeyboardFocusChange)) DrawFrame(*painter, area, true);
    return;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  const bool focused = option->state.testFlag(State_HasFocus);
  if (element == PE_FrameLineEdit && focused) DrawFrame(*painter, option->rect, true);
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  if (element != PE_PanelButtonCommand || button == nullptr) return;
  const bool byKey = focused && option->state.testFlag(State_KeyboardFocusChange);
  const bool isDefault = button->features.testFlag(QStyleOptionButton::DefaultButton);
  if (byKey || isDefault) DrawFrame(*painter, option->rect, byKey);
}

void ApplyLook() {
  QApplication::setStyle(std::make_unique<CLook>().release());  // the application's
  const QPalette palette = MakePalette();
  QApplication::setPalette(palette);
  QApplication::setPalette(MakeMenuPalette(palette), "QMenu");
  // Those of the desktop would have its theme.
  QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QCoreApplication::setAttribute(Qt::AA_DontShowIconsInMenus);
}
