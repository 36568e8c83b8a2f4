#include "ui/controls/DropText.h"

#include <QFontMetricsF>
#include <cmath>

#include "ui/controls/RatingControl.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"

namespace {

constexpr QChar kEllipsis(0x2026);
constexpr unsigned char kFirstLetter = 32;  // what comes before is an image

bool IsImage(char byte) { return static_cast<unsigned char>(byte) < kFirstLetter; }

/// Without an image of its own a character takes no room.
bool HasImage(const DropImages& images, int image) { return image >= 1 && image <= images.Count; }

QSize GetImageSize(const DropImages& images) {
  if (images.Count == 0) return {};
  const QSize whole = GetPictureSize(images.Picture);
  return {whole.width() / images.Count, whole.height()};
}

int CountImages(const std::vector<int>& characters, const DropImages& images) {
  int count = 0;
  for (const int image : characters) count += HasImage(images, image) ? 1 : 0;
  return count;
}

QPixmap GetImage(const DropTextStyle& style, int image, double pixelRatio) {
  const DropImages& images = style.Images;
  if (!style.OnYellow) return GetPictureImage(images.Picture, image - 1, images.Count, pixelRatio);
  const PictureId picture = images.PictureOnYellow != PictureId{} ? images.PictureOnYellow : images.Picture;
  const int shown = image == images.Dark ? images.DarkOnYellow : image;
  return GetPictureImage(picture, shown - 1, images.Count, pixelRatio);
}

/// Returns the edge behind the last image.
int DrawImages(CDevicePainter& painter, const std::vector<int>& characters, int left, const QRect& area,
               const DropTextStyle& style) {
  const QSize size = GetImageSize(style.Images);
  int count = 0;
  for (const int image : characters) {
    if (!HasImage(style.Images, image)) continue;
    const QPixmap pixmap = GetImage(style, image, painter.GetPixelRatio());
    const int x = left + painter.Scaled(count++ * size.width());
    painter.Draw({x, area.top() + (area.height() - pixmap.height()) / 2}, pixmap);
  }
  return left + painter.Scaled(count * size.width());
}

QString Shorten(const QString& text, double width, const DropTextStyle& style) {
  const QFontMetricsF metrics(style.Font);
  if (metrics.horizontalAdvance(text) <= width) return text;
  if (style.ShortensPaths && text.contains(u'/')) return ShortenPath(text, width, metrics);
  return metrics.elidedText(text, Qt::ElideRight, width);
}

}  // namespace

DropText SplitDropText(const std::string& text) {
  std::size_t first = 0;
  std::size_t end = text.size();
  DropText parts;
  while (first < end && IsImage(text[first])) parts.Before.push_back(text[first++]);
  while (end > first && IsImage(text[end - 1])) --end;
  for (std::size_t i = end; i < text.size(); ++i) parts.After.push_back(text[i]);
  parts.Text = ToQString(std::string_view(text).substr(first, end - first));
  return parts;
}

QString ShortenPath(const QString& path, double width, const QFontMetricsF& metrics) {
  if (metrics.horizontalAdvance(path) <= width) return path;
  const QString tail = kEllipsis + path.mid(path.lastIndexOf(u'/'));
  if (metrics.horizontalAdvance(tail) > width) return metrics.elidedText(tail, Qt::ElideMiddle, width);
  // The longest start that leaves room; found by halving, since paths may have thousands of characters.
  qsizetype fits = 0;
  qsizetype tooLong = path.lastIndexOf(u'/') + 1;
  while (tooLong - fits > 1) {
    const qsizetype middle = (fits + tooLong) / 2;
    (metrics.horizontalAdvance(path.left(middle) + tail) <= width ? fits : tooLong) = middle;
  }
  if (fits > 0 && path[fits - 1].isHighSurrogate()) --fits;
  return path.left(fits) + tail;
}

QString SpellDropText(const std::string& text, const DropImages& images) {
  const DropText parts = SplitDropText(text);
  const auto stars = static_cast<int>(parts.Before.size());
  const QString before = images.AreStars && stars > 0 ? ToQString(GetStarsText(stars)) + u' ' : QString();
  return (before + parts.Text.trimmed()).trimmed();
}

double MeasureDropText(const std::string& text, const DropTextStyle& style) {
  const DropText parts = SplitDropText(text);
  const int images = CountImages(parts.Before, style.Images) + CountImages(parts.After, style.Images);
  return images * GetImageSize(style.Images).width() +
         QFontMetricsF(style.Font).horizontalAdvance(parts.Text);
}

QString FindCutText(const std::string& text, const DropTextStyle& style, double width) {
  return MeasureDropText(text, style) > width ? SplitDropText(text).Text.trimmed() : QString();
}

void DrawDropText(CDevicePainter& painter, const QRect& area, const std::string& text,
                  const DropTextStyle& style) {
  const DropText parts = SplitDropText(text);
  const int left = DrawImages(painter, parts.Before, area.left(), area, style);
  const double ratio = painter.GetPixelRatio();
  const int behind = CountImages(parts.After, style.Images) * GetImageSize(style.Images).width();
  const double room = (area.right() + 1 - left) / ratio - behind;
  const QString shortened = Shorten(parts.Text, room, style);
  const QRect place(left, area.top(), area.right() + 1 - left, area.height());
  painter.DrawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, style.Font, style.Colour,
                   shortened);
  const double width = QFontMetricsF(style.Font).horizontalAdvance(shortened);
  DrawImages(painter, parts.After, left + painter.Scaled(width), area, style);
}
