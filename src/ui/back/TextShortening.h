#pragma once

#include <QFontMetricsF>
#include <QString>
#include <QStringList>

/// Texts cut to the room they have. Widths are pixels of the layout.

/// The end of a path with as much of its beginning as fits, "/home/anna/…/Lakes in August"; of a last name
/// that is too long, its beginning.
QString ShortenPath(const QString& path, const QFontMetricsF& metrics, double width);

/// One line: a path if `maybePath` is set and it holds a "/", else a text that loses its end.
QString ShortenLine(const QString& text, bool maybePath, const QFontMetricsF& metrics, double width);

/// The text broken at words into at most `most` lines; a longer word is broken too. What doesn't fit is left
/// out at the end of the last line.
QStringList BreakIntoLines(const QString& text, const QFont& font, double width, int most);
