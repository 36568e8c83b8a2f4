#pragma once

#include <QImage>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ui/strip/CellPainter.h"
#include "ui/strip/StripLayout.h"

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
/// cell alone. Cells are told by their index in the set.
class CStripCache {
 public:
  explicit CStripCache(FolderLabel folderLabel) : Cells(std::move(folderLabel)) {}

  /// Not owned; null for empty places. Forgets all cells.
  void SetPhotoSet(const CPhotoSet* set);

  /// Makes room for twice `visibleCount` cells, all empty. CError if there is no memory for that.
  void SetForm(const StripMetrics& metrics, int visibleCount);

  /// Forgets all cells; that of `base` rests under the lens.
  void Clear(int base);
  void Extend(int count, CacheSide side);

  /// The cell so many further on rests under the lens.
  void MoveBase(int delta);

  // Paint a part of a cell anew; nothing if it isn't held.
  void RepaintPhoto(int index);
  void RepaintLabel(int index);
  void RepaintMarks(int index);

  /// Paints a sharper picture of the photo, which stays until its cell is painted anew or falls out; nothing
  /// if the cell isn't held.
  void PaintSharp(int index, const QImage& picture);
  /// The cells so many to either side of that under the lens that show a thumbnail, the nearest first.
  std::vector<int> ListSoftCells(int reach) const;

  /// The mark under the pointer, -1 for none, and the cell that it belongs to. False if nothing changes.
  bool SetHotMark(int index, int mark);
  bool HasHotMark() const { return HotMark >= 0; }

  const CacheRun& GetRun() const { return Run; }
  const QImage& GetImage() const { return Image; }

  /// The columns of the picture that hold something.
  QRect GetHeldArea() const;

  /// What the photo's place in the order of the set is called.
  std::string GetLabel(int index) const { return Cells.GetLabel(index); }
  QString FindCutText(int index, bool inBand) const { return Cells.FindCutText(index, inBand); }

  // Counted since the cache was made.
  int GetPaintedCells() const { return PaintedCells; }
  int GetReadThumbnails() const { return Cells.GetReadThumbnails(); }

 private:
  int GetHotMarkOf(int index) const { return index == HotIndex ? HotMark : -1; }
  bool FindFrame(int index, int& left) const;
  void Shift(int columns);

  CCellPainter Cells;
  StripMetrics Metrics;
  CacheRun Run;
  std::set<int>
      SharpCells;  // by index; some may have fallen out, and count no more when they are painted again
  QImage Image;
  int Base = 0;  // index of the cell that rests under the lens
  int HotIndex = -1;
  int HotMark = -1;
  int PaintedCells = 0;
};
