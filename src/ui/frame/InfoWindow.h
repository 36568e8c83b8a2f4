#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

/// Shows the product's name and version and the ways to help, feedback, offers and web site, in the middle of
/// the main window, until the user closes it. Does nothing while another dialog is open.
void ShowInfoWindow(QWidget& mainWindow);

/// Where a window of that size stands in the middle of `owner`, moved as far as needed to lie in `workArea`.
/// One that is larger begins where the area does.
QPoint CentreInWorkArea(QSize size, const QRect& owner, const QRect& workArea);
