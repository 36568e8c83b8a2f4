#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QString>
#include <string>
#include <vector>

#include "resources/PictureIds.h"

class CDevicePainter;
class QFontMetricsF;

/// The small pictures that stand in the texts of a drop control: images side by side in one picture, of
/// which the character 1 is the first.
struct DropImages {
  PictureId Picture{};
  int Count = 0;                // 0 for none
  PictureId PictureOnYellow{};  // for the row under the pointer, if it has others
  int Dark = 0;                 // an image of which the row under the pointer has a darker one ...
  int DarkOnYellow = 0;         // ... and that one; 0 for none
  bool AreStars = false;        // and belong to what the text says
};

/// A text whose characters below 32 at its start and its end are images.
struct DropText {
  std::vector<int> Before;
  QString Text;
  std::vector<int> After;
};
DropText SplitDropText(const std::string& text);
/// The text without images, for assistive tools: "3 stars or better".
QString SpellDropText(const std::string& text, const DropImages& images);

/// What a text of a drop control is drawn with.
struct DropTextStyle {
  QFont Font;
  QColor Colour;
  DropImages Images;
  bool OnYellow = false;
  bool ShortensPaths = false;  // in the middle; all other texts lose their end
};

/// The path in at most `width` pixels: its last name whole, if that is possible, and an ellipsis in place of
/// what stands before.
QString ShortenPath(const QString& path, double width, const QFontMetricsF& metrics);

/// Pixels of the layout.
double MeasureDropText(const std::string& text, const DropTextStyle& style);

/// The text without its images, if it is wider than that; else empty.
QString FindCutText(const std::string& text, const DropTextStyle& style, double width);

/// On one line, in the middle of `area`, which is device pixels.
void DrawDropText(CDevicePainter& painter, const QRect& area, const std::string& text,
                  const DropTextStyle& style);
