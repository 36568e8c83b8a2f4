#include "ui/pages/ViewTabLayout.h"

#include <QStringList>
#include <algorithm>

#include "base/Format.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kPageMargin = 11;  // left and right
constexpr int kPageTop = kTabHeight + 1;
constexpr int kPageBottom = 1;
constexpr int kIconGap = 6;  // between icon and text

}  // namespace

QRect TabRect(int index, int count, int barWidth) {
  const int share = barWidth - count + 1;
  const int left = index * share / count;
  return {left + index, 0, (index + 1) * share / count - left, kTabHeight};
}

int TabAt(QPoint point, int count, int barWidth) {
  for (int i = 0; i < count; ++i) {
    if (TabRect(i, count, barWidth).contains(point)) return i;
  }
  return -1;
}

QRect TabPageRect(QSize bar) {
  return {kPageMargin, kPageTop, std::max(0, bar.width() - 2 * kPageMargin),
          std::max(0, bar.height() - kPageTop - kPageBottom)};
}

QString TabCaption(const QString& forms, int count) {
  constexpr int kMany = 2;
  const QStringList list = forms.split(u'\t');
  const QString form = list.value(std::clamp(count, 0, kMany), list.last());
  return ToQString(Format(form.toStdString(), count));
}

int TabIconIndex(int count, int frames, bool selected) {
  return 2 * std::clamp(count, 0, frames - 1) + (selected ? 1 : 0);
}

TabContent LayOutTab(const QRect& tab, QSize icon, QSize oneLine, QSize twoLines) {
  const int gap = icon.isEmpty() || oneLine.isEmpty() ? 0 : kIconGap;
  TabContent content;
  content.TwoLines = icon.width() + gap + oneLine.width() > tab.width() - 2 * kTabTileWidth;
  const QSize text = content.TwoLines ? twoLines : oneLine;
  const int left = tab.left() + (tab.width() - icon.width() - gap - text.width()) / 2;
  const auto place = [&](int x, QSize size) {
    return QRect(QPoint(x, tab.top() + (tab.height() - size.height()) / 2), size);
  };
  content.Icon = place(left, icon);
  content.Text = place(left + icon.width() + gap, text);
  return content;
}

TabTiles ChooseTabTiles(int index, int count, bool selected) {
  const bool first = index == 0;
  const bool last = index == count - 1;
  if (selected) return {first ? 1 : 7, 2, last ? 9 : 3};
  return {first ? 4 : 8, 5, last ? 10 : 6};
}
