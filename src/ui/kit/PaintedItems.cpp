#include "ui/kit/PaintedItems.h"

#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <memory>
#include <unordered_map>
#include <utility>

#include "ui/kit/PaintedGroup.h"

namespace {

CPaintedItems* ItemsOf(QObject* widget) { return dynamic_cast<CPaintedItems*>(widget); }

constexpr int kMostNewItems = 50;  // that are told one by one

/// Where each item stood when the items were told last: usually the way to an item without a search.
using ItemPlaces = std::unordered_map<int, int>;  // index by key

void TellNameAfterJob(const QPointer<QWidget>& widget, int key) {
  RunAfterJob([widget, key] {
    if (IsJobRunning()) return TellNameAfterJob(widget, key);  // the next one
    if (CPaintedItems* items = ItemsOf(widget)) items->TellItemName(items->FindItem(key));
  });
}

/// One item, known by its key. Invalid while the widget has none of that key.
class CItemFace final : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  CItemFace(QWidget& widget, int key, const ItemPlaces& places) : Widget(&widget), Key(key), Places(places) {}

  const QWidget* GetWidget() const { return Widget; }
  /// -1 if the item is gone.
  int GetIndex() const {
    const CPaintedItems* items = ItemsOf(Widget);
    if (items == nullptr) return -1;
    const auto place = Places.find(Key);
    const int index = place != Places.end() && place->second < items->CountItems() ? place->second : -1;
    return index >= 0 && items->GetItemKey(index) == Key ? index : items->FindItem(Key);
  }

  bool isValid() const override { return GetIndex() >= 0; }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return isValid() ? Widget->window()->windowHandle() : nullptr; }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(Widget); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QString text(QAccessible::Text text) const override {
    if (text == QAccessible::Name) return Describe().Name;
    return text == QAccessible::Description ? Describe().Description : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override {
    const int index = GetIndex();
    const QRect place = index >= 0 ? ItemsOf(Widget)->PlaceItem(index) : QRect();
    return place.isEmpty() ? QRect() : QRect(Widget->mapToGlobal(place.topLeft()), place.size());
  }
  QAccessible::Role role() const override {
    return isValid() ? ItemsOf(Widget)->GetItemRole() : QAccessible::NoRole;
  }
  QAccessible::State state() const override;

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  QStringList actionNames() const override { return {pressAction()}; }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }
  void doAction(const QString& action) override {
    if (action != pressAction() || !isValid()) return;
    DoAsClicked(*Widget, [widget = Widget.data(), key = Key] {
      CPaintedItems& items = *ItemsOf(widget);
      const int index = items.FindItem(key);
      if (index >= 0) items.ActivateItem(index);
    });
  }

 private:
  PaintedItem Describe() const {
    const int index = GetIndex();
    if (index < 0) return {};
    const PaintedItem& told = Last.Ask([&] { return ItemsOf(Widget)->DescribeItem(index); });
    // Tools keep an answer, so the empty one that they get meanwhile has to be put right.
    const bool isUnknown = told.Name.isEmpty() && IsJobRunning();
    if (isUnknown && !std::exchange(WillTellName, true)) TellNameAfterJob(Widget, Key);
    return told;
  }

  const QPointer<QWidget> Widget;
  const int Key;
  const ItemPlaces& Places;
  mutable CLastAnswer<PaintedItem> Last;
  mutable bool WillTellName = false;
};

QAccessible::State CItemFace::state() const {
  QAccessible::State state;
  const int index = GetIndex();
  if (index < 0) {
    state.invalid = true;
    return state;
  }
  const CPaintedItems& items = *ItemsOf(Widget);
  const bool isCurrent = index == items.GetCurrentItem();
  state.disabled = !Widget->isEnabled();
  state.invisible = !Widget->isVisible();
  state.offscreen = !Widget->rect().intersects(items.PlaceItem(index));
  state.selectable = true;
  state.selected = items.IsItemSelected(index);
  state.focusable = Widget->focusPolicy() != Qt::NoFocus || items.HasKeys();
  state.focused = isCurrent && items.HasKeys();
  state.active = isCurrent;
  return state;
}

/// The widget with its items as children. It owns their faces.
class CListFace final : public CPartFace {
 public:
  explicit CListFace(QWidget& widget) : CPartFace(&widget), Places(ReadPlaces(*ItemsOf(&widget))) {}
  ~CListFace() override {
    for (const auto& [key, id] : Faces) QAccessible::deleteAccessibleInterface(id);
  }

  QAccessible::Role role() const override {
    return GetItems() != nullptr ? GetItems()->GetListRole() : QAccessible::NoRole;
  }
  int childCount() const override { return GetItems() != nullptr ? GetItems()->CountItems() : 0; }
  QAccessibleInterface* child(int index) const override {
    return index >= 0 && index < childCount() ? FaceOf(GetItems()->GetItemKey(index)) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto* item = dynamic_cast<const CItemFace*>(child);
    return item != nullptr && item->GetWidget() == object() ? item->GetIndex() : -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    const QPoint place = widget()->mapFromGlobal(QPoint(x, y));
    for (int i = 0; i < childCount(); ++i) {
      if (GetItems()->PlaceItem(i).contains(place)) return child(i);
    }
    return nullptr;
  }
  QAccessibleInterface* focusChild() const override {
    return GetItems() != nullptr && GetItems()->HasKeys() ? child(GetItems()->GetCurrentItem()) : nullptr;
  }

  QAccessible::State state() const override {
    QAccessible::State state = CPartFace::state();
    if (focusChild() != nullptr) state.focused = false;  // the item is
    return state;
  }

  void TellItems() {
    const ItemPlaces before = std::exchange(Places, ReadPlaces(*GetItems()));
    std::erase_if(Faces, [this](const auto& face) {
      if (Places.contains(face.first)) return false;
      QAccessible::deleteAccessibleInterface(face.second);
      return true;
    });
    // Qt's own event for a changed order is sent in a form that tools don't read, so new items are told one
    // by one. The first ones of many are enough: a tool then asks for the list anew.
    int told = 0;
    for (const auto& [key, index] : Places) {
      if (!before.contains(key) && told++ < kMostNewItems) {
        TellTools(*FaceOf(key), QAccessible::ObjectCreated);
      }
    }
  }

  void TellCurrentItem() {
    const int index = GetItems()->GetCurrentItem();
    const int last = std::exchange(LastCurrent, index >= 0 ? GetItems()->GetItemKey(index) : -1);
    const auto known = Faces.find(last);
    if (last != LastCurrent && known != Faces.end()) TellTools(*FaceOf(last), QAccessible::SelectionRemove);
    if (QAccessibleInterface* item = child(index)) {
      if (GetItems()->HasKeys()) TellTools(*item, QAccessible::Focus);
      TellTools(*item, QAccessible::Selection);
    }
    TellTools(*this, QAccessible::SelectionWithin);
  }

 private:
  static ItemPlaces ReadPlaces(const CPaintedItems& items) {
    ItemPlaces places;
    for (int i = 0; i < items.CountItems(); ++i) places.emplace(items.GetItemKey(i), i);
    return places;
  }

  CPaintedItems* GetItems() const { return ItemsOf(object()); }

  QAccessibleInterface* FaceOf(int key) const {
    const auto known = Faces.find(key);
    if (known != Faces.end()) return QAccessible::accessibleInterface(known->second);
    QAccessibleInterface* face = std::make_unique<CItemFace>(*widget(), key, Places).release();
    Faces.emplace(key, QAccessible::registerAccessibleInterface(face));
    return face;
  }

  mutable std::unordered_map<int, QAccessible::Id> Faces;  // by key; of items that a tool has asked for
  ItemPlaces Places;
  int LastCurrent = -1;  // key of the item that was told as current
};

CListFace* FindListFace(QWidget* widget) {
  return dynamic_cast<CListFace*>(QAccessible::queryAccessibleInterface(widget));
}

}  // namespace

bool CPaintedItems::HasKeys() const { return CountsAsFocused(dynamic_cast<const QWidget&>(*this)); }

int CPaintedItems::FindItem(int key) const {
  for (int i = 0; i < CountItems(); ++i) {
    if (GetItemKey(i) == key) return i;
  }
  return -1;
}

QAccessibleInterface* CPaintedItems::MakeFace() {
  return std::make_unique<CListFace>(dynamic_cast<QWidget&>(*this)).release();
}

void CPaintedItems::TellCurrentItem() {
  CurrentChanged = true;
  TellSoon();
}

void CPaintedItems::TellItems() {
  ItemsChanged = true;
  TellSoon();
}

void CPaintedItems::TellItemName(int index) {
  if (!QAccessible::isActive()) return;
  const CListFace* list = FindListFace(dynamic_cast<QWidget*>(this));
  if (QAccessibleInterface* item = list != nullptr ? list->child(index) : nullptr) {
    TellTools(*item, QAccessible::NameChanged);
  }
}

void CPaintedItems::TellSoon() {
  if (!QAccessible::isActive() || Telling) return;
  Telling = true;
  QMetaObject::invokeMethod(
      dynamic_cast<QWidget*>(this), [this] { TellNow(); }, Qt::QueuedConnection);
}

void CPaintedItems::TellNow() {
  Telling = false;
  auto* widget = dynamic_cast<QWidget*>(this);
  CListFace* list = FindListFace(widget);
  const bool items = std::exchange(ItemsChanged, false);
  const bool current = std::exchange(CurrentChanged, false);
  if (list == nullptr) return;
  if (items) list->TellItems();
  if (current && widget->isVisible()) list->TellCurrentItem();
}
