#pragma once

#include <QFontMetricsF>
#include <QString>
#include <QStringList>

/// Texts cut to the room they have. Widths are pixels of the layout.

/// One line: if `maybePath` is set and it holds a "/" it is shortened as a path, else it loses its end.
QString ShortenLine(const QString& text, bool maybePath, const QFontMetricsF& metrics, double width);

/// The text broken at words into at most `most` lines; a longer word is broken too. What doesn't fit is left
/// out at the end of the last line.
QStringList BreakIntoLines(const QString& text, const QFont& font, double width, int most);
