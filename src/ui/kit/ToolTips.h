#pragma once

#include <QPoint>
#include <QRect>
#include <QString>

#include "resources/StringIds.h"

class QFont;
class QWidget;

/// A text of the table holds a caption and, behind its first line feed, a tool tip. Without a line feed it
/// is all caption.
struct CaptionAndTip {
  QString Caption;
  QString Tip;  // at most 80 characters
};
CaptionAndTip SplitCaptionAndTip(const QString& text);
CaptionAndTip LoadCaptionAndTip(StringId id);

/// A tool tip's text on one line, and the key that it names behind "Shortcut key: ".
struct TipParts {
  QString Text;
  QString Key;  // empty if it names none
};
TipParts DivideTip(const QString& tip);

/// Gives a widget a tool tip; an empty text takes it away. The text is plain, whatever it looks like, and is
/// broken into lines at 275 pixels.
void SetToolTip(QWidget& widget, const QString& text);

/// Hides the tip that SetToolTip gave a widget, if it shows: for a widget that goes or moves away under it.
void HideToolTip(const QWidget& widget);

/// Shows a tip at once, from a widget's QEvent::ToolTip, until the pointer leaves `area` of the widget.
void ShowToolTip(QPoint onScreen, const QString& text, QWidget& widget, const QRect& area);

/// Makes two neighbours one area: a tip that shows stays when the pointer goes from one to the other, and
/// takes the other's text at once. Called once for the two.
void ShareToolTipArea(QWidget& first, QWidget& second);

/// The text in lines of at most `width` pixels, a longer word on a line of its own; its own line feeds
/// stay.
QString WrapToolTip(const QString& text, const QFont& font, int width);
