#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include "resources/PictureIds.h"
#include "resources/StringIds.h"
#include "ui/kit/FontTable.h"

class QLabel;
class QPainter;
class QRegion;
class QWidget;

// What the small windows in the program's own look have in common.

/// Where a window of that size stands in the middle of `owner`, moved as far as needed to lie in `workArea`.
/// One that is larger begins where the area does.
QPoint CentreInWorkArea(QSize size, const QRect& owner, const QRect& workArea);

/// Moves the window there; `owner` is a window, too.
void CentreOn(QWidget& window, const QWidget& owner);

/// Gives a window without a frame the shape of its background picture, whose corners are round: cut to
/// `outline` where windows are shaped by whole pixels, elsewhere by what the picture leaves transparent.
void ShapeWindow(QWidget& window, const QRegion& outline);

/// Paints the background of such a window.
void DrawWindowPicture(QPainter& painter, const QWidget& window, PictureId picture);

/// A text of the table, expanded.
QString LoadWindowText(StringId id);

/// Writes a text on the window's page, in as many lines as it needs. The label belongs to the window.
QLabel* AddWindowText(QWidget& window, const QRect& place, FontId font, const QString& text);
