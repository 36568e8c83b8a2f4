#include "ui/back/TextShortening.h"

#include <QTextLayout>
#include <QTextOption>

#include "ui/kit/DropText.h"

namespace {

constexpr QChar kEllipsis(0x2026);

/// Line feeds as the layout of texts knows them.
QString WithLineSeparators(QString text) {
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  return text.replace(u'\n', QChar(QChar::LineSeparator));
}

}  // namespace

QString ShortenLine(const QString& text, bool maybePath, const QFontMetricsF& metrics, double width) {
  QString line = text;
  line.replace(u'\n', u' ').replace(u'\r', u' ');
  return maybePath && line.contains(u'/') ? ShortenPath(line, width, metrics)
                                          : metrics.elidedText(line, Qt::ElideRight, width);
}

QStringList BreakIntoLines(const QString& text, const QFont& font, double width, int most) {
  const QString whole = WithLineSeparators(text);
  QTextLayout layout(whole, font);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  layout.beginLayout();
  QStringList lines;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    if (lines.size() + 1 == most && line.textStart() + line.textLength() < whole.size()) {
      // One more character tells that the line was cut, however short it is.
      QString rest = whole.mid(line.textStart()).section(QChar(QChar::LineSeparator), 0, 0) + kEllipsis;
      lines += QFontMetricsF(font).elidedText(rest, Qt::ElideRight, width);
      break;
    }
    lines += whole.mid(line.textStart(), line.textLength()).remove(QChar(QChar::LineSeparator));
  }
  layout.endLayout();
  return lines;
}
