#pragma once

#include <QPixmap>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <map>

#include "catalog/AssetRecord.h"
#include "ui/strip/FilmstripLayout.h"

class CPhotoSet;

/// The row of thumbnails, with the position in the set that the whole window goes by. It holds the
/// thumbnails of the cells in sight, so that a paint reads nothing.
class CFilmstrip : public QWidget {
 public:
  explicit CFilmstrip(QWidget* parent = nullptr);

  /// Called once the strip has rested on a photo for a moment, or its set is empty.
  std::function<void()> OnPhotoRested;

  /// The set, not owned, and the photo to begin with; the position is kept within the set. Null for none.
  void SetPhotoSet(const CPhotoSet* set, int current);

  void MoveTo(int index);
  void MoveBy(int delta) { MoveTo(Current + delta); }
  void MovePage(bool backward);

  int GetCurrent() const { return Current; }
  int GetCount() const;
  /// Invalid if the set is empty.
  CAssetRecord GetCurrentRecord() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  int GetStart() const { return StripStart(width(), GetCount(), Current); }
  void LoadVisible();
  QPixmap LoadCell(int cell) const;

  const CPhotoSet* Set = nullptr;
  int Current = 0;
  std::map<int, QPixmap> Thumbnails;  // of the visible cells; null where a photo has none
  QTimer RestTimer;
};
