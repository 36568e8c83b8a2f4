#pragma once

#include <QPoint>
#include <QRect>
#include <QRegion>
#include <string>

/// Where things stand in the progress window, in pixels of its client area. `splash` is the large form
/// with the product lines.

inline constexpr int kProgressWidth = 400;
inline constexpr int kProgressCells = 5;
inline constexpr int kProductLines = 5;

int ProgressHeight(bool splash);

/// The window's outline: a rectangle with stepped corners.
QRegion ProgressOutline(bool splash);

/// The rectangle that the frame's black lines, one pixel wide, run around.
QRect ProgressFrame(bool splash);

/// The inside of the frame.
QRect ProgressBar(bool splash);

/// How much of the bar's width is filled when the photo at `current`, from 0, of `total` is done. The
/// bar is empty while `total` isn't above 0 or `current` is below 0.
int ProgressFill(int barWidth, int current, int total);

/// Cell 0 to 4, for a small picture.
QRect ProgressCell(bool splash, int cell);

/// Where a picture of that size stands in a cell: fitted, centred, never enlarged, at least 1 by 1.
QRect FitIntoProgressCell(const QSize& picture, const QRect& cell);

QRect ProgressStopButton(bool splash);

/// Where product line 0 to 4 stands. A last line of less than two characters leaves room behind the
/// second.
QRect ProgressProductLine(int line, const std::string& lastLine);
