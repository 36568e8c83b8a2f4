#pragma once

#include <QPoint>
#include <QRect>
#include <QString>

#include "resources/StringIds.h"

class QFont;
class QHelpEvent;
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

/// Answers a widget's QEvent::ToolTip with a tip that shows until the pointer leaves `area` of the widget;
/// with an empty text no tip shows.
void AnswerToolTip(QHelpEvent& event, const QString& text, QWidget& widget, const QRect& area);

/// The text as the platform's tips show it: just these characters, in lines of at most 275 pixels.
QString PrepareToolTip(const QString& text);

/// Makes two neighbours one area: a tip that shows stays when the pointer goes from one to the other, and
/// takes the other's text at once. Called once for the two.
void ShareToolTipArea(QWidget& first, QWidget& second);

/// The text in lines of at most `width` pixels, a longer word on a line of its own; its own line feeds
/// stay.
QString WrapToolTip(const QString& text, const QFont& font, int width);
