#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

/// Where the tab bar's tabs and their contents stand, in pixels of the layout, from the bar's top left
/// corner.

inline constexpr int kTabHeight = 35;
inline constexpr int kTabTileWidth = 7;

/// Tab `index` of `count`, which share the width with a pixel between them.
QRect TabRect(int index, int count, int barWidth);

/// The tab at that point, -1 beside the tabs.
int TabAt(QPoint point, int count, int barWidth);

/// Where the bar's page stands.
QRect TabPageRect(QSize bar);

/// A caption that a tab shows: the form for the count, filled in. Its line feed may be read as a blank.
/// `forms` are those for none, one and many, separated by tabs.
QString TabCaption(const QString& forms, int count);

/// The image of a tab's icon, which holds one for each state from none up, not selected and selected.
int TabIconIndex(int count, int frames, bool selected);

struct TabContent {
  QRect Icon;
  QRect Text;
  bool TwoLines = false;
};

/// Icon and text side by side in the middle of a tab. The text is on one line if that fits, else on two.
/// The sizes are those of the whole text; an empty one takes no room.
TabContent LayOutTab(const QRect& tab, QSize icon, QSize oneLine, QSize twoLines);

/// The tiles that a tab is drawn from.
struct TabTiles {
  int Left;
  int Middle;
  int Right;
};
TabTiles ChooseTabTiles(int index, int count, bool selected);
inline constexpr int kTileBehindTabs = 0;
