#pragma once

#include <QAccessible>
#include <QRect>
#include <QString>

#include "ui/kit/AssistiveTools.h"

struct PaintedItem {
  QString Name;
  QString Description;
};

/// Tells assistive tools of items that a widget paints itself: tabs, rows, thumbnails. The widget derives
/// from this as well as from QWidget, answers what is asked of it, and says when something has changed.
///
/// A page of thumbnails is a List and its photos are ListItems, named like the photo's title. A screen reader
/// makes "IMG_0042, 3 of 12, selected" of the name, the number of items and the state, so the name holds no
/// more than "IMG_0042". The page calls TellCurrentItem when another photo is selected and in its
/// focusInEvent, and TellItems when photos have come or gone.
///
/// The current item counts as focused while its widget does (CountsAsFocused). A screen reader announces an
/// item that has become focused.
///
/// The operations may be called at any time and raise nothing. All but DescribeItem are also called while a
/// job runs: they answer from what the widget holds and don't touch the catalog. Nothing is asked while no
/// assistive tool listens. The widget has no child widgets that a tool should know.
class CPaintedItems : public CFaceMaker {
 public:
  virtual QAccessible::Role GetListRole() const { return QAccessible::List; }
  virtual QAccessible::Role GetItemRole() const { return QAccessible::ListItem; }

  virtual int CountItems() const = 0;

  /// A number from 0 that the item keeps while others come and go, like the id of its photo: no other item
  /// has it, even when this one is gone.
  virtual int GetItemKey(int index) const = 0;
  /// The item's index, -1 when it is gone. Looks through all items; to be overridden where there is a faster
  /// way.
  virtual int FindItem(int key) const;

  /// Not called while a job runs: then a tool hears what it heard last.
  virtual PaintedItem DescribeItem(int index) const = 0;
  virtual QRect PlaceItem(int index) const = 0;  // in the widget
  /// -1 for none.
  virtual int GetCurrentItem() const = 0;
  virtual bool IsItemSelected(int index) const { return index == GetCurrentItem(); }
  /// Whether keys go to the current item.
  virtual bool HasKeys() const;

  /// Does what a click on the item does. May raise, and delete the widget.
  virtual void ActivateItem(int index) = 0;

  QAccessibleInterface* MakeFace() final;

  void TellItemName(int index);

 protected:
  /// Another item is current or selected, or the widget has got the focus. Told only while the widget shows.
  void TellCurrentItem();
  /// Items have come, gone or changed places.
  void TellItems();

 private:
  /// Tells from the event loop, so that many changes in a row are told as one, and the current item after the
  /// widget's own focus.
  void TellSoon();
  void TellNow();

  bool ItemsChanged = false;
  bool CurrentChanged = false;
  bool Telling = false;
};
