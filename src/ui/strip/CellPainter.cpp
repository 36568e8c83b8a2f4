#include "ui/strip/CellPainter.h"

#include <QFontMetrics>
#include <memory>

#include "base/Texts.h"
#include "imaging/Image.h"
#include "sets/PhotoSet.h"
#include "ui/controls/RatingControl.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/marks/PhotoMarks.h"

namespace {

std::string GetRatingLabel(std::int32_t rating) {
  if (rating <= 0) return LoadText(StringId::NotRated);
  return GetStarsText(rating);
}

std::string GetRollText(const CPhotoSet& set, int index, std::int32_t roll) {
  const int start = set.IsGroupStart(index) ? index : set.GetPreviousGroupStart(index);
  int end = index + 1;
  if (!set.IsGroupEnd(index)) {
    // For the last group this is its last photo, else the first photo after the group.
    const int next = set.GetNextGroupStart(index);
    end = set.IsGroupStart(next) ? next : next + 1;
  }
  return FormatString(StringId::RollLabel, roll + 1, index - start + 1, end - start);
}

// The edges of the film, by their rows of the layout.
struct FilmEdge {
  int Top;
  int Bottom;
  QColor Colour;
};
constexpr FilmEdge kFilmEdges[] = {
    {0, 2, QColor(222, 222, 222)},
    {2, 3, QColor(205, 205, 205)},
    {125, 126, QColor(132, 132, 132)},
    {126, 128, QColor(60, 60, 60)},
};

// The columns of the picture of separators; cap, body and foot are three rows each.
enum class Separator : int { First = 0, Plain = 1, Group = 2, Last = 3 };
constexpr int kSeparatorWidth = 6;
constexpr int kSeparatorPart = 3;

constexpr int kShadowPiece = 4;
constexpr int kTextLine = 12;
constexpr int kLabelMargin = 2;
constexpr int kStarImages = 5;

static_assert(std::size(kPhotoMarks) == kMarkCount);
constexpr int kMarkImages = 4;  // off, on, off under the pointer, on under the pointer

/// For the text of a band, in pixels of the layout.
int GetLabelRoom(const StripMetrics& metrics) {
  const int width = metrics.BandLabelAt(0).width() - metrics.Scaled(kLabelMargin);
  return static_cast<int>(width / metrics.PixelRatio);
}

}  // namespace

std::string GetGroupLabel(const CPhotoSet& set, int index, const FolderLabel& folderLabel) {
  const CAssetRecord record = set.GetAsset(index);
  if (!record.IsValid()) return {};
  switch (set.GetSortKind()) {
    case SortKind::None:
      return {};
    case SortKind::Month:
      return FormatDate(record.GetCachedDate(), false);
    case SortKind::Folder:
      return folderLabel(record.GetFolder());
    case SortKind::Title:
      return record.GetTitle();
    case SortKind::Rating:
      return GetRatingLabel(record.GetCachedRating());
    case SortKind::Roll:
      return GetRollText(set, index, record.GetRollID());
  }
  return {};
}

bool CCellPainter::IsPhoto(int index) const {
  return Set != nullptr && index >= 0 && index < Set->GetCount();
}

std::string CCellPainter::GetLabel(int index) const {
  return IsPhoto(index) ? GetGroupLabel(*Set, index, LabelOfFolder) : std::string();
}

QString CCellPainter::FindCutText(int index, bool inBand) const {
  if (!IsPhoto(index)) return {};
  const CAssetRecord record = Set->GetAsset(index);
  if (!inBand && record.LoadThumbnail() != nullptr) return {};
  const QString text = ToQString(inBand ? GetLabel(index) : record.GetFilename());
  const int room = inBand ? GetLabelRoom(Metrics) : kThumbnailWidth;
  return QFontMetrics(GetFont(FontId::Band)).horizontalAdvance(text) > room ? text : QString();
}

void CCellPainter::PaintCell(CDevicePainter& painter, int left, int index, int hotMark) {
  PaintFilm(painter, left);
  PaintSeparator(painter, left - Metrics.SeparatorWidth, index);
  if (IsPhoto(index)) {
    PaintPhoto(painter, left, index);
    PaintMarks(painter, left, index, hotMark);
    PaintLabel(painter, left, index);
  } else {
    painter.Fill({left, 0, Metrics.FrameWidth, Metrics.Height}, colours::kWindow);
  }
  PaintSeparator(painter, left + Metrics.FrameWidth, index + 1);
}

void CCellPainter::PaintFilm(CDevicePainter& painter, int left) const {
  const int begin = left - Metrics.SeparatorWidth;
  const int width = Metrics.Pitch + Metrics.SeparatorWidth;
  painter.Fill({begin, 0, width, Metrics.Height}, colours::kCell);
  for (const FilmEdge& edge : kFilmEdges) {
    const int top = Metrics.Scaled(edge.Top);
    painter.Fill({begin, top, width, Metrics.Scaled(edge.Bottom) - top}, edge.Colour);
  }
}

void CCellPainter::PaintSeparator(CDevicePainter& painter, int left, int index) const {
  const int width = Metrics.SeparatorWidth;
  const int count = Set != nullptr ? Set->GetCount() : 0;
  if (index < 0 || index > count) {
    painter.Fill({left, 0, width, Metrics.Height}, colours::kWindow);
    return;
  }
  Separator kind = Separator::Plain;
  if (index == 0) {
    kind = Separator::First;
  } else if (index == count) {
    kind = Separator::Last;
  } else if (Set->IsGroupStart(index)) {
    kind = Separator::Group;
  }
  const int column = static_cast<int>(kind) * kSeparatorWidth;
  const int rows[] = {0, Metrics.FrameTop, Metrics.FrameBottom, Metrics.Height};
  for (int part = 0; part < 3; ++part) {
    painter.DrawPart(PictureId::Separators, {column, part * kSeparatorPart, kSeparatorWidth, kSeparatorPart},
                     {left, rows[part], width, rows[part + 1] - rows[part]});
  }
}

void CCellPainter::PaintPhoto(CDevicePainter& painter, int left, int index) {
  if (!IsPhoto(index)) return;
  const CAssetRecord record = Set->GetAsset(index);
  ++ReadThumbnails;
  QImage image;
  if (const std::unique_ptr<CImage> thumbnail = record.LoadThumbnail()) {
    image = FitToImage(*thumbnail, {kThumbnailWidth, kThumbnailHeight}, Metrics.PixelRatio, Enlarging::Never);
  }
  if (image.isNull()) {
    painter.Fill(Metrics.PictureAreaAt(left), colours::kCell);
    return PaintNoThumbnail(painter, Metrics.ThumbnailBoxAt(left), record);
  }
  image.setDevicePixelRatio(1.0);
  PaintPicture(painter, left, image);
}

void CCellPainter::PaintPicture(CDevicePainter& painter, int left, const QImage& picture) const {
  painter.Fill(Metrics.PictureAreaAt(left), colours::kCell);
  const QRect box = Metrics.ThumbnailBoxAt(left);
  const QRect place(box.x() + (box.width() - picture.width()) / 2,
                    box.y() + (box.height() - picture.height()) / 2, picture.width(), picture.height());
  painter.GetPainter().drawImage(place.topLeft(), picture);
  DrawDropShadow(painter, PictureId::ThumbnailShadow, kShadowPiece, place);
}

void CCellPainter::PaintNoThumbnail(CDevicePainter& painter, const QRect& box,
                                    const CAssetRecord& record) const {
  const QFont& font = GetFont(FontId::Band);
  const QString name =
      QFontMetrics(font).elidedText(ToQString(record.GetFilename()), Qt::ElideMiddle, kThumbnailWidth);
  const int flags = Qt::AlignCenter | Qt::TextSingleLine;
  painter.DrawText(box, flags, font, colours::kInk, ToQString(LoadText(StringId::NoThumbnailFor)));
  painter.DrawText(box.translated(0, Metrics.Scaled(kTextLine)), flags, font, colours::kInk, name);
}

void CCellPainter::PaintMarks(CDevicePainter& painter, int left, int index, int hotMark) const {
  if (!IsPhoto(index)) return;
  painter.Fill(Metrics.MarksAt(left), colours::kCell);
  const CAssetRecord record = Set->GetAsset(index);
  for (int i = 0; i < kMarkCount; ++i) {
    const int image = (record.GetFlag(kPhotoMarks[i].Flag) ? 1 : 0) + (i == hotMark ? 2 : 0);
    painter.Draw(Metrics.MarkCornerAt(left, i),
                 GetPictureImage(kPhotoMarks[i].StripPicture, image, kMarkImages, Metrics.PixelRatio));
  }
}

void CCellPainter::PaintLabel(CDevicePainter& painter, int left, int index) const {
  if (!IsPhoto(index)) return;
  const QRect area = Metrics.BandLabelAt(left);
  painter.Fill(area, colours::kCell);
  const std::int32_t rating = Set->GetAsset(index).GetCachedRating();
  if (Set->GetSortKind() == SortKind::Rating && rating > 0) {
    const QPixmap stars = GetPictureImage(PictureId::BandStars, rating, kStarImages, Metrics.PixelRatio);
    painter.Draw({area.x(), area.y() + (area.height() - stars.height()) / 2}, stars);
    return;
  }
  const QFont& font = GetFont(FontId::Band);
  const QRect text = area.adjusted(Metrics.Scaled(kLabelMargin), 0, 0, 0);
  const QString label =
      QFontMetrics(font).elidedText(ToQString(GetLabel(index)), Qt::ElideRight, GetLabelRoom(Metrics));
  painter.DrawText(text, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, font, colours::kInk, label);
}
