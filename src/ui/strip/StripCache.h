#pragma once

#include <QImage>
#include <functional>
#include <optional>

#include "ui/strip/StripLayout.h"

class CDevicePainter;

enum class CacheSide { Before, After };

/// Which cells the strip's cache holds: a run of neighbours, told from the cell that rests under the lens.
/// The first of them is in slot 0. There is room for twice as many as the window shows; what finds no room
/// when the run grows falls out at the other end.
class CacheRun {
 public:
  explicit CacheRun(int visibleCount = 1) : VisibleCount(visibleCount) {}

  /// What has to be done to the cache for a run that has grown.
  struct Growth {
    int Shift = 0;      // slots that what is held moves to the right; negative to the left
    int FirstSlot = 0;  // the new cells, to be painted
    int Count = 0;
  };

  /// Takes in the next cells on one side; none if `count` isn't positive, at most all that have room.
  Growth Extend(int count, CacheSide side);
  void Clear() { Before = After = 0; }
  /// Another cell rests under the lens; the held ones stay where they are.
  void MoveBase(int delta);

  int GetRoom() const { return 2 * VisibleCount; }
  int GetBefore() const { return Before; }
  int GetAfter() const { return After; }  // the cell under the lens included
  /// The cell's slot, told by its distance from that under the lens; -1 if it isn't held.
  int FindSlot(int distance) const;

  /// How many cells have to be taken in before a move by `delta` can be shown; 0 asks for what the window
  /// shows at rest.
  int GetMissing(CacheSide side, int delta) const;
  /// False for moves that no run holds from end to end.
  bool CanShowMove(int delta) const { return delta >= -VisibleCount && delta <= VisibleCount; }

  /// Where the next cell is to be taken in while nothing else is to be done: those ahead first. None
  /// if that's enough. `current` is the index in the set of the cell under the lens.
  std::optional<CacheSide> FindIdleSide(int current, int setCount) const;

 private:
  int VisibleCount;
  int Before = 0;
  int After = 0;
};

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
