#include "ui/kit/FontTable.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "base/Exceptions.h"

namespace {

constexpr int kSmallScreenHeight = 600;
constexpr const char* kFamily = "Arial";

// Small letters are a pixel smaller than their line could hold.
enum class Style { Plain, Italic, Bold, Small };

struct FontForm {
  int CellHeight;
  int CellHeightOnSmallScreen;
  Style Look;
};

constexpr FontForm kForms[] = {
    {15, 13, Style::Italic}, {15, 13, Style::Plain},  {15, 13, Style::Bold},   {14, 12, Style::Italic},
    {14, 12, Style::Plain},  {18, 18, Style::Plain},  {15, 15, Style::Plain},  {12, 12, Style::Plain},
    {12, 12, Style::Small},  {14, 14, Style::Plain},  {15, 15, Style::Italic}, {15, 15, Style::Plain},
    {15, 15, Style::Bold},   {15, 15, Style::Italic}, {14, 14, Style::Plain},  {20, 20, Style::Plain},
    {25, 25, Style::Bold},
};

QFont MakeFont(Style look) {
  QFont font(kFamily);
  font.setStyleHint(QFont::SansSerif);
  font.setItalic(look == Style::Italic);
  font.setBold(look == Style::Bold);
  return font;
}

/// The height of a line in sizes of its font. Measured on large letters: at the sizes used, the metrics
/// are rounded up to whole pixels, ascent and descent each.
double MeasureLineHeight(QFont font) {
  constexpr int kMeasured = 1000;
  font.setPixelSize(kMeasured);
  const QFontMetricsF metrics(font);
  return (metrics.ascent() + metrics.descent()) / kMeasured;
}

const CFontTable* TheTable = nullptr;

}  // namespace

int PixelSizeForCell(int cellHeight, double lineHeight) {
  // Rounded to at most n is below n + 0.5.
  return std::max(1, static_cast<int>(std::ceil((cellHeight + 0.5) / lineHeight)) - 1);
}

CFontTable::CFontTable(bool smallScreen) {
  static_assert(std::size(kForms) == kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    const FontForm& form = kForms[i];
    QFont font = MakeFont(form.Look);
    const int cellHeight = smallScreen ? form.CellHeightOnSmallScreen : form.CellHeight;
    const int size = PixelSizeForCell(cellHeight, MeasureLineHeight(font));
    font.setPixelSize(form.Look == Style::Small ? size - 1 : size);
    Entries[i] = {cellHeight, font};
  }
  TheTable = this;
}

CFontTable::~CFontTable() {
  if (TheTable == this) TheTable = nullptr;
}

const CFontTable& CFontTable::GetInstance() {
  if (TheTable == nullptr) throw CError("The fonts are used before they are made.");
  return *TheTable;
}

bool CFontTable::IsSmallScreen() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen != nullptr && screen->availableGeometry().height() <= kSmallScreenHeight;
}
