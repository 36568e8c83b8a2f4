#include "ui/kit/ToolTips.h"

#include <QCursor>
#include <QEvent>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QPalette>
#include <QPointer>
#include <QStringList>
#include <QTextDocument>
#include <QToolTip>
#include <QWidget>

#include "base/Texts.h"
#include "ui/kit/Colours.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kLongestTip = 80;  // characters
constexpr int kWidestTip = 275;
constexpr QLatin1String kKeyLine("Shortcut key: ");

/// The platform's tips in the colours and the font of the interface.
void DressToolTips() {
  if (QToolTip::font() == GetFont(FontId::Note)) return;
  QPalette palette = QToolTip::palette();
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    palette.setColor(group, QPalette::ToolTipBase, colours::kTip);
    palette.setColor(group, QPalette::ToolTipText, colours::kInk);
    palette.setColor(group, QPalette::Window, colours::kTip);
    palette.setColor(group, QPalette::WindowText, colours::kInk);
  }
  QToolTip::setPalette(palette);
  QToolTip::setFont(GetFont(FontId::Note));
}

/// What the platform's tips show as just these characters.
QString MakePlain(const QString& lines) {
  if (!Qt::mightBeRichText(lines)) return lines;
  return QStringLiteral("<p style='white-space:pre'>%1</p>").arg(lines.toHtmlEscaped());
}

bool IsShown(const QWidget& widget) { return QToolTip::isVisible() && QToolTip::text() == widget.toolTip(); }

class CSharedArea : public QObject {
 public:
  CSharedArea(QWidget& first, QWidget& second) : QObject(&first), First(&first), Second(&second) {
    first.installEventFilter(this);
    second.installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Enter && First && Second) {
      QWidget& entered = watched == First ? *First : *Second;
      const QWidget& left = watched == First ? *Second : *First;
      if (IsShown(left)) QToolTip::showText(QCursor::pos(), entered.toolTip(), &entered);
    }
    return false;
  }

 private:
  QPointer<QWidget> First;
  QPointer<QWidget> Second;
};

}  // namespace

CaptionAndTip SplitCaptionAndTip(const QString& text) {
  const qsizetype end = text.indexOf(u'\n');
  if (end < 0) return {text, {}};
  return {text.left(end), text.mid(end + 1, kLongestTip)};
}

CaptionAndTip LoadCaptionAndTip(StringId id) { return SplitCaptionAndTip(ToQString(LoadExpandedString(id))); }

TipParts DivideTip(const QString& tip) {
  TipParts parts;
  QStringList lines = tip.split(u'\n');
  if (lines.last().startsWith(kKeyLine)) parts.Key = lines.takeLast().mid(kKeyLine.size());
  parts.Text = lines.join(u' ');
  return parts;
}

QString WrapToolTip(const QString& text, const QFont& font, int width) {
  const QFontMetricsF metrics(font);
  QStringList lines;
  for (const QString& paragraph : text.split(u'\n')) {
    QString line;
    for (const QString& word : paragraph.split(u' ')) {
      const QString longer = line.isEmpty() ? word : line + u' ' + word;
      if (!line.isEmpty() && metrics.horizontalAdvance(longer) > width) {
        lines += line;
        line = word;
      } else {
        line = longer;
      }
    }
    lines += line;
  }
  return lines.join(u'\n');
}

QString PrepareToolTip(const QString& text) {
  return MakePlain(WrapToolTip(text, GetFont(FontId::Note), kWidestTip));
}

void SetToolTip(QWidget& widget, const QString& text) {
  DressToolTips();
  const QString prepared = PrepareToolTip(text);
  if (prepared == widget.toolTip()) return;
  HideToolTip(widget);
  widget.setToolTip(prepared);
}

void HideToolTip(const QWidget& widget) {
  if (IsShown(widget)) QToolTip::hideText();
}

void AnswerToolTip(QHelpEvent& event, const QString& text, QWidget& widget, const QRect& area) {
  event.setAccepted(!text.isEmpty());
  if (text.isEmpty()) return QToolTip::hideText();
  DressToolTips();
  QToolTip::showText(event.globalPos(), PrepareToolTip(text), &widget, area);
}

void ShareToolTipArea(QWidget& first, QWidget& second) {
  new CSharedArea(first, second);  // a child of the first
}
