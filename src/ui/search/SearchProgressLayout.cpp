#include "ui/search/SearchProgressLayout.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "platform/Unicode.h"

namespace {

constexpr int kHeight = 160;
constexpr int kHeightWithSplash = 330;

// How far the rows from the top, and from the bottom, are cut at both ends.
constexpr int kCornerSteps[] = {7, 5, 4, 3, 2, 1, 1};

int Offset(bool splash) { return splash ? kHeightWithSplash - kHeight : 0; }

}  // namespace

int ProgressHeight(bool splash) { return splash ? kHeightWithSplash : kHeight; }

QRegion ProgressOutline(bool splash) {
  constexpr int kCornerRows = static_cast<int>(std::size(kCornerSteps));
  const int height = ProgressHeight(splash);
  QRegion outline(0, kCornerRows, kProgressWidth, height - 2 * kCornerRows);
  for (int row = 0; row < kCornerRows; ++row) {
    const int step = kCornerSteps[row];
    outline += QRect(step, row, kProgressWidth - 2 * step, 1);
    outline += QRect(step, height - 1 - row, kProgressWidth - 2 * step, 1);
  }
  return outline;
}

QRect ProgressFrame(bool splash) {
  return {QPoint(26, 25 + Offset(splash)), QPoint(373, 43 + Offset(splash))};
}

QRect ProgressBar(bool splash) { return ProgressFrame(splash).adjusted(1, 1, -1, -1); }

int ProgressFill(int barWidth, int current, int total) {
  if (total <= 0 || current < 0) return 0;
  const std::int64_t done = std::min(std::int64_t{current} + 1, std::int64_t{total});
  return static_cast<int>(done * barWidth / total);
}

QRect ProgressCell(bool splash, int cell) { return {26 + 71 * cell, 62 + Offset(splash), 64, 48}; }

QRect FitIntoProgressCell(const QSize& picture, const QRect& cell) {
  QSize size = picture;
  if (size.width() > cell.width() || size.height() > cell.height()) {
    size.scale(cell.size(), Qt::KeepAspectRatio);
  }
  size = size.expandedTo({1, 1});
  return {cell.x() + (cell.width() - size.width()) / 2, cell.y() + (cell.height() - size.height()) / 2,
          size.width(), size.height()};
}

QRect ProgressStopButton(bool splash) { return {147, 124 + Offset(splash), 252 - 147, 21}; }

QRect ProgressProductLine(int line, const std::string& lastLine) {
  constexpr int kLineStep = 13;
  const int drop = platform::CountCharacters(lastLine) < 2 ? 13 : 6;
  const int top = 105 + line * kLineStep + (line >= 2 ? drop : 0);
  return {26, top, 374 - 26, 14};
}
