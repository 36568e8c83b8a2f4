#pragma once

#include <QPixmap>
#include <QPointF>
#include <QRect>
#include <QSize>

class QWidget;

/// The soft shadow of a list that pops up over a window. Not every desktop can blend one window over another,
/// so the list carries the shadow on a picture of what lies behind it, at its right and its bottom.

/// How much of the shadow's colour shows at a point, 0 to 1, for a list that covers `caster`.
double GetPopupShadowStrength(QPointF point, const QRectF& caster);

/// The room that the shadow takes to the right of and below `list`, as far as `behind` reaches; none for a
/// list that reaches beyond that.
QSize GetPopupShadowRoom(const QRect& list, const QRect& behind);

/// The picture of `area` of a window, in its own coordinates, with the shadow of a list of that size in the
/// area's upper left corner.
QPixmap GrabShadowedBackdrop(QWidget& behind, const QRect& area, QSize list);
