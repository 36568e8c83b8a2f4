#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <vector>

#include "resources/PictureIds.h"
#include "resources/StringIds.h"
#include "ui/kit/Commands.h"
#include "ui/kit/PaintedItems.h"

class CDevicePainter;

/// The tabs of the notebook above the strip, and the panel below them on which a page stands. It shows and
/// selects tabs; the pages are the main window's, which swaps them when a tab has been selected. With the
/// focus, which Tab brings, Left, Right, Home and End select tabs. To assistive tools it is a list of page
/// tabs.
class CViewTabBar : public QWidget, public CPaintedItems {
 public:
  explicit CViewTabBar(QWidget* parent);

  /// A tab has been selected, perhaps the one that was selected before.
  std::function<void()> OnTabChanged;

  /// Puts a tab in front of the first one with a larger order. Does nothing if the bar has it.
  void AddTab(ViewTabId id, int order);
  void RemoveTab(ViewTabId id);
  bool HasTab(ViewTabId id) const;

  /// `icon` holds 2 x `frames` images side by side: for no photo, for one and so on, each not selected and
  /// selected. `caption` holds the forms for none, one and many.
  void SetTabInfo(ViewTabId id, PictureId icon, int frames, StringId caption, int count);
  void SetCount(ViewTabId id, int count);

  void SelectTab(ViewTabId id);
  /// The tab after the selected one; after the last the first.
  void SelectNextTab();
  ViewTabId GetSelectedTab() const { return Selected; }

  /// Where the page stands, in the bar's coordinates.
  QRect GetPageRect() const;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  struct Item {
    ViewTabId Id;
    int Order;
    PictureId Icon{};
    int Frames = 0;
    QSize IconSize{0, 0};
    QString Caption;  // all forms
    int Count = 0;
  };
  int Find(ViewTabId id) const;  // -1 if there is none
  const Item& GetItem(int index) const { return Items[static_cast<std::size_t>(index)]; }
  Item& GetItem(int index) { return Items[static_cast<std::size_t>(index)]; }
  int CountTabs() const { return static_cast<int>(Items.size()); }
  int FindTabAt(QPoint point) const;

  QAccessible::Role GetListRole() const override { return QAccessible::PageTabList; }
  QAccessible::Role GetItemRole() const override { return QAccessible::PageTab; }
  int CountItems() const override { return CountTabs(); }
  int GetItemKey(int index) const override { return static_cast<int>(GetItem(index).Id); }
  PaintedItem DescribeItem(int index) const override;
  QRect PlaceItem(int index) const override;
  int GetCurrentItem() const override { return Find(Selected); }
  void ActivateItem(int index) override { SelectTab(GetItem(index).Id); }

  void PaintPanel(CDevicePainter& painter) const;
  void PaintTab(CDevicePainter& painter, int index) const;
  void PaintFocus(CDevicePainter& painter) const;
  void PaintContent(CDevicePainter& painter, const QRect& tab, const Item& item) const;

  std::vector<Item> Items;  // by ascending order
  ViewTabId Selected = ViewTabId::CurrentPhoto;
};
