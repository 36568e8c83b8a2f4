#pragma once

#include <QImage>
#include <QRect>
#include <functional>
#include <string>

#include "ui/strip/StripLayout.h"

class CPhotoSet;
class CAssetRecord;
class CDevicePainter;

/// The short name of a folder.
using FolderLabel = std::function<std::string(const std::string& folder)>;

/// What a photo's place in the order of its set is called: its month's date, its folder, its title, its
/// rating or its place in its roll. Empty for a set in no order, and for an index out of range.
std::string GetGroupLabel(const CPhotoSet& set, int index, const FolderLabel& folderLabel);

/// Paints the cells of the strip, whole or in part, with what set, catalog and thumbnail cache hold of their
/// photos. An index outside the set is an empty place beside the film. Opens no photo file. `left` is the
/// left edge of the cell's frame; `hotMark` the mark under the pointer, -1 for none.
class CCellPainter {
 public:
  explicit CCellPainter(FolderLabel folderLabel) : LabelOfFolder(std::move(folderLabel)) {}

  /// Not owned; null paints empty places.
  void SetPhotoSet(const CPhotoSet* set) { Set = set; }
  void SetMetrics(const StripMetrics& metrics) { Metrics = metrics; }

  bool IsPhoto(int index) const;
  void PaintCell(CDevicePainter& painter, int left, int index, int hotMark);
  void PaintPhoto(CDevicePainter& painter, int left, int index);
  /// Paints the photo as this picture, which fits the thumbnail's box, instead of its thumbnail.
  void PaintPicture(CDevicePainter& painter, int left, const QImage& picture) const;
  void PaintMarks(CDevicePainter& painter, int left, int index, int hotMark) const;
  void PaintLabel(CDevicePainter& painter, int left, int index) const;

  /// What the photo's place in the order of the set is called.
  std::string GetLabel(int index) const;

  /// The whole text of the cell's band, or of the name in place of a thumbnail, if it is painted cut; else
  /// empty.
  QString FindCutText(int index, bool inBand) const;

  int GetReadThumbnails() const { return ReadThumbnails; }

 private:
  void PaintFilm(CDevicePainter& painter, int left) const;
  void PaintSeparator(CDevicePainter& painter, int left, int index) const;
  void PaintNoThumbnail(CDevicePainter& painter, const QRect& box, const CAssetRecord& record) const;

  FolderLabel LabelOfFolder;
  const CPhotoSet* Set = nullptr;
  StripMetrics Metrics;
  int ReadThumbnails = 0;
};
