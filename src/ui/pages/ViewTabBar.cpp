#include "ui/pages/ViewTabBar.h"

#include <QFontMetricsF>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStringList>
#include <algorithm>
#include <cmath>

#include "base/Texts.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/KeyFocus.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"
#include "ui/pages/ViewTabLayout.h"

namespace {

constexpr int kAroundFocus = 3;  // between a tab's edge and the frame that shows its focus
constexpr double kFocusRadius = 4;

/// A rectangle of the layout in the pixels of the screen. What touches the right edge goes on touching it,
/// where the bar's width is no whole number of them.
QRect ToDevice(const CDevicePainter& painter, const QRect& rect, int barWidth) {
  const auto across = [&](int x) {
    return x >= barWidth ? painter.GetArea().width() : std::min(painter.Scaled(x), painter.GetArea().width());
  };
  const int left = across(rect.left());
  const int top = painter.Scaled(rect.top());
  return {left, top, across(rect.left() + rect.width()) - left,
          painter.Scaled(rect.top() + rect.height()) - top};
}

QString OnOneLine(QString caption) { return caption.replace(u'\n', u' '); }

/// The room for a caption on as many lines as it has.
QSize MeasureLines(const QString& caption) {
  if (caption.isEmpty()) return {0, 0};
  const QFontMetricsF metrics(GetFont(FontId::Tab));
  const QStringList lines = caption.split(u'\n');
  double width = 0;
  for (const QString& line : lines) width = std::max(width, metrics.horizontalAdvance(line));
  return {static_cast<int>(std::ceil(width)),
          CFontTable::GetInstance().GetCellHeight(FontId::Tab) * static_cast<int>(lines.size())};
}

void DrawLines(CDevicePainter& painter, const QRect& area, const QString& caption, const QColor& colour) {
  const QStringList lines = caption.split(u'\n');
  const int count = static_cast<int>(lines.size());
  for (int i = 0; i < count; ++i) {
    const int top = area.height() * i / count;
    const int bottom = area.height() * (i + 1) / count;
    painter.DrawText({area.left(), area.top() + top, area.width(), bottom - top},
                     Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, GetFont(FontId::Tab), colour,
                     lines[i]);
  }
}

QString LoadTip(ViewTabId id) { return ToQString(LoadExpandedString(static_cast<StringId>(id))); }

}  // namespace

CViewTabBar::CViewTabBar(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("ViewTab"));
  setAccessibleName(ToQString(LoadText(StringId::ToldViews)));
  setFocusPolicy(Qt::TabFocus);
}

int CViewTabBar::Find(ViewTabId id) const {
  const auto found =
      std::find_if(Items.begin(), Items.end(), [&](const Item& item) { return item.Id == id; });
  return found == Items.end() ? -1 : static_cast<int>(found - Items.begin());
}

void CViewTabBar::AddTab(ViewTabId id, int order) {
  if (HasTab(id)) return;
  const auto behind =
      std::find_if(Items.begin(), Items.end(), [&](const Item& item) { return item.Order > order; });
  Items.insert(behind, Item{.Id = id, .Order = order, .Caption = {}});
  TellItems();
  update();
}

void CViewTabBar::RemoveTab(ViewTabId id) {
  std::erase_if(Items, [&](const Item& item) { return item.Id == id; });
  TellItems();
  update();
}

bool CViewTabBar::HasTab(ViewTabId id) const { return Find(id) >= 0; }

void CViewTabBar::SetTabInfo(ViewTabId id, PictureId icon, int frames, StringId caption, int count) {
  const int index = Find(id);
  if (index < 0) return;
  Item& item = GetItem(index);
  item.Icon = icon;
  item.Frames = frames;
  const QSize whole = GetPictureSize(icon);
  item.IconSize = whole.isEmpty() ? QSize(0, 0) : QSize(whole.width() / (2 * frames), whole.height());
  item.Caption = ToQString(LoadText(caption));
  SetCount(id, count);
}

void CViewTabBar::SetCount(ViewTabId id, int count) {
  const int index = Find(id);
  if (index < 0) return;
  GetItem(index).Count = count;
  TellItemName(index);
  update();
}

void CViewTabBar::SelectTab(ViewTabId id) {
  Selected = id;
  TellCurrentItem();
  update();
  if (OnTabChanged) OnTabChanged();
}

void CViewTabBar::SelectNextTab() {
  if (Items.empty()) return;
  SelectTab(GetItem((Find(Selected) + 1) % CountTabs()).Id);
}

PaintedItem CViewTabBar::DescribeItem(int index) const {
  const Item& item = GetItem(index);
  return {OnOneLine(TabCaption(item.Caption, item.Count)), LoadTip(item.Id)};
}

QRect CViewTabBar::PlaceItem(int index) const { return TabRect(index, CountTabs(), width()); }

QRect CViewTabBar::GetPageRect() const { return TabPageRect(size()); }

int CViewTabBar::FindTabAt(QPoint point) const { return TabAt(point, CountTabs(), width()); }

bool CViewTabBar::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  auto& help = static_cast<QHelpEvent&>(*event);
  const int tab = FindTabAt(help.pos());
  const QString tip = tab >= 0 ? LoadTip(GetItem(tab).Id) : QString();
  AnswerToolTip(help, tip, *this, TabRect(tab, CountTabs(), width()));
  return true;
}

void CViewTabBar::mousePressEvent(QMouseEvent* event) {
  const int tab = event->button() == Qt::LeftButton ? FindTabAt(event->position().toPoint()) : -1;
  event->setAccepted(tab >= 0);  // beside the tabs it is the main window's
  if (tab >= 0) SelectTab(GetItem(tab).Id);
}

void CViewTabBar::keyPressEvent(QKeyEvent* event) {
  const bool isBare = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  const int last = CountTabs() - 1;
  const int selected = Find(Selected);
  int tab = -1;
  if (event->key() == Qt::Key_Left) tab = std::max(selected - 1, 0);
  if (event->key() == Qt::Key_Right) tab = std::min(selected + 1, last);
  if (event->key() == Qt::Key_Home) tab = 0;
  if (event->key() == Qt::Key_End) tab = last;
  if (!isBare || tab < 0) return event->ignore();
  if (tab != selected) SelectTab(GetItem(tab).Id);
}

void CViewTabBar::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  TellCurrentItem();
}

void CViewTabBar::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  PaintPanel(painter);
  for (int i = 0; i < CountTabs(); ++i) PaintTab(painter, i);
  if (ShowsFocus(*this)) PaintFocus(painter);
}

void CViewTabBar::PaintPanel(CDevicePainter& painter) const {
  const QRect area = painter.GetArea();
  const int top = painter.Scaled(kTabHeight);
  const QRect behindTabs(0, 0, area.width(), top);
  painter.Fill(behindTabs, colours::kWindow);
  painter.DrawPart(PictureId::TabTiles, {kTileBehindTabs * kTabTileWidth, 0, kTabTileWidth, kTabHeight},
                   behindTabs);

  const QRect panel(0, top, area.width(), area.height() - top);
  painter.Fill(panel, colours::kPage);
  const int edge = painter.Scaled(kPagePanel.Corner);
  DrawOneOfNine(painter, kPagePanel, NinePart::Left, {panel.left(), top, edge, panel.height()});
  DrawOneOfNine(painter, kPagePanel, NinePart::Right, {panel.width() - edge, top, edge, panel.height()});
}

void CViewTabBar::PaintTab(CDevicePainter& painter, int index) const {
  const Item& item = GetItem(index);
  const QRect tab = TabRect(index, CountTabs(), width());
  const TabTiles tiles = ChooseTabTiles(index, CountTabs(), item.Id == Selected);
  const int middle = tab.left() + kTabTileWidth;
  const int end = tab.left() + tab.width() - kTabTileWidth;
  const auto draw = [&](int tile, int left, int right) {
    painter.DrawPart(PictureId::TabTiles, {tile * kTabTileWidth, 0, kTabTileWidth, kTabHeight},
                     ToDevice(painter, {left, 0, right - left, kTabHeight}, width()));
  };
  draw(tiles.Left, tab.left(), middle);
  draw(tiles.Middle, middle, end);
  draw(tiles.Right, end, tab.left() + tab.width());
  PaintContent(painter, tab, item);
}

void CViewTabBar::PaintFocus(CDevicePainter& painter) const {
  const QRect tab = ToDevice(painter, TabRect(Find(Selected), CountTabs(), width()), width());
  const int around = painter.Scaled(kAroundFocus);
  DrawFocusFrame(painter, tab.adjusted(around, around, -around, -around), kFocusRadius);
}

void CViewTabBar::PaintContent(CDevicePainter& painter, const QRect& tab, const Item& item) const {
  const bool selected = item.Id == Selected;
  const QString caption = TabCaption(item.Caption, item.Count);
  const TabContent content =
      LayOutTab(tab, item.IconSize, MeasureLines(OnOneLine(caption)), MeasureLines(caption));
  if (!item.IconSize.isEmpty()) {
    const QPixmap icon = GetPictureImage(item.Icon, TabIconIndex(item.Count, item.Frames, selected),
                                         2 * item.Frames, painter.GetPixelRatio());
    painter.Draw(ToDevice(painter, content.Icon, width()).topLeft(), icon);
  }
  DrawLines(painter, ToDevice(painter, content.Text, width()),
            content.TwoLines ? caption : OnOneLine(caption), selected ? colours::kInk : QColor(Qt::white));
}
