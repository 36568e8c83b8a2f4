#pragma once

#include <QProxyStyle>

/// How the toolkit's own windows look: message boxes, the file dialog, menus, edit boxes, scroll bars. Style
/// and colours are the program's on every desktop, whatever its theme, like all else that it paints; letters
/// of dialogs are as large as the desktop's.
class CLook : public QProxyStyle {
 public:
  CLook();

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returnData) const override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
};

/// Gives the application object this look. To be called before the first window is made.
void ApplyLook();
