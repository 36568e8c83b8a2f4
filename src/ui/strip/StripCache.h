#pragma once

#include <QImage>
#include <functional>

#include "ui/strip/CacheRun.h"
#include "ui/strip/StripMetrics.h"

class CDevicePainter;

/// The painted cells of the strip, side by side in one picture of device pixels: a run of neighbours, a
/// separator between them and at both ends. Taking in a cell moves what is held as a block and paints that
/// cell alone. Cells are told by their distance from that which rests under the lens.
class CStripCache {
 public:
  /// Paints a cell whose left separator begins at `slotLeft`.
  using PaintCell = std::function<void(CDevicePainter& painter, int slotLeft, int distance)>;
  /// Paints a part of a held cell whose frame begins at `left`.
  using PaintPart = std::function<void(CDevicePainter& painter, int left)>;

  /// Makes room for twice `visibleCount` cells, all empty. CError if there is no memory for that.
  void SetForm(const StripMetrics& metrics, int visibleCount);

  /// Forgets all cells.
  void Clear() { Run.Clear(); }
  void Extend(int count, CacheSide side, const PaintCell& paint);
  void MoveBase(int delta) { Run.MoveBase(delta); }
  /// Nothing if the cell isn't held.
  void Repaint(int distance, const PaintPart& paint);

  const CacheRun& GetRun() const { return Run; }
  const QImage& GetImage() const { return Image; }
  /// The columns of the picture that hold something.
  QRect GetHeldArea() const;
  int GetPaintedCells() const { return PaintedCells; }

 private:
  void Shift(int columns);

  StripMetrics Metrics;
  CacheRun Run;
  QImage Image;
  int PaintedCells = 0;
};
