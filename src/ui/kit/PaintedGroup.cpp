#include "ui/kit/PaintedGroup.h"

#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <memory>

namespace {

/// Null for null.
QAccessibleInterface* FaceOf(const QWidget* widget) {
  return QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
}

using Relations = QList<QPair<QAccessibleInterface*, QAccessible::Relation>>;

std::vector<GroupPart> PartsOf(const QObject* widget) {
  const auto* group = dynamic_cast<const CPaintedGroup*>(widget);
  return group != nullptr ? group->ListParts() : std::vector<GroupPart>();
}

/// The group that tells the widget as one of its parts, else null.
QWidget* FindGroup(const QWidget& widget) {
  for (QWidget* around = widget.parentWidget(); around != nullptr; around = around->parentWidget()) {
    const std::vector<GroupPart> parts = PartsOf(around);
    if (std::ranges::find(parts, &widget, &GroupPart::Widget) != parts.end()) return around;
    if (around->isWindow()) break;
  }
  return nullptr;
}

/// A painted text, known by its position among the parts.
class CTextFace final : public QAccessibleInterface {
 public:
  CTextFace(QWidget& group, int index) : Group(&group), Index(index) {}

  bool isValid() const override { return !GetPart().Text.isEmpty(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return Group ? Group->window()->windowHandle() : nullptr; }
  QAccessibleInterface* parent() const override { return FaceOf(Group); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QString text(QAccessible::Text text) const override {
    return text == QAccessible::Name ? GetPart().Text : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override {
    const QRect place = GetPart().Place;
    return place.isEmpty() ? QRect() : QRect(Group->mapToGlobal(place.topLeft()), place.size());
  }
  QAccessible::Role role() const override { return QAccessible::StaticText; }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.invalid = !isValid();
    state.invisible = !Group || !Group->isVisible();
    state.readOnly = true;
    return state;
  }
  Relations relations(QAccessible::Relation match) const override {
    const QWidget* named = GetPart().Names;
    if (named == nullptr || !(match & QAccessible::Labelled)) return {};
    return {{FaceOf(named), QAccessible::Labelled}};
  }

 private:
  GroupPart GetPart() const {
    const std::vector<GroupPart> parts = PartsOf(Group);
    const auto index = static_cast<std::size_t>(Index);
    return index < parts.size() ? parts[index] : GroupPart();
  }

  const QPointer<QWidget> Group;
  const int Index;
};

/// The text of a group that names the widget, else null.
QAccessibleInterface* FindLabel(const QWidget& widget) {
  QWidget* group = FindGroup(widget);
  const std::vector<GroupPart> parts = PartsOf(group);
  const auto label = std::ranges::find(parts, &widget, &GroupPart::Names);
  if (label == parts.end()) return nullptr;
  return FaceOf(group)->child(static_cast<int>(label - parts.begin()));
}

}  // namespace

CGroupFace::~CGroupFace() {
  for (const auto& [index, id] : Texts) QAccessible::deleteAccessibleInterface(id);
}

QAccessible::State CGroupFace::state() const {
  QAccessible::State state = CPartFace::state();
  state.busy = role() == QAccessible::Window && IsJobRunning();
  return state;
}

QAccessible::Role CGroupFace::role() const {
  const auto* group = dynamic_cast<const CPaintedGroup*>(object());
  return group != nullptr ? group->GetGroupRole() : QAccessible::NoRole;
}

int CGroupFace::childCount() const { return static_cast<int>(PartsOf(object()).size()); }

QAccessibleInterface* CGroupFace::child(int index) const {
  const std::vector<GroupPart> parts = PartsOf(object());
  if (index < 0 || index >= static_cast<int>(parts.size())) return nullptr;
  const QWidget* part = parts[static_cast<std::size_t>(index)].Widget;
  return part != nullptr ? FaceOf(part) : GetText(index);
}

int CGroupFace::indexOfChild(const QAccessibleInterface* child) const {
  for (int i = 0; i < childCount(); ++i) {
    if (this->child(i) == child) return i;
  }
  return -1;
}

QAccessibleInterface* CGroupFace::childAt(int x, int y) const {
  for (int i = 0; i < childCount(); ++i) {
    QAccessibleInterface* part = child(i);
    if (!part->state().invisible && part->rect().contains(x, y)) return part;
  }
  return nullptr;
}

QAccessibleInterface* CGroupFace::GetText(int index) const {
  const auto known = Texts.find(index);
  if (known != Texts.end()) return QAccessible::accessibleInterface(known->second);
  QAccessibleInterface* face = std::make_unique<CTextFace>(*widget(), index).release();
  Texts.emplace(index, QAccessible::registerAccessibleInterface(face));
  return face;
}

QAccessibleInterface* CPaintedGroup::MakeFace() {
  return std::make_unique<CGroupFace>(dynamic_cast<QWidget&>(*this)).release();
}

QAccessibleInterface* CPartFace::parent() const {
  QWidget* group = FindGroup(*widget());
  return group != nullptr ? FaceOf(group) : QAccessibleWidget::parent();
}

Relations CPartFace::relations(QAccessible::Relation match) const {
  Relations all = QAccessibleWidget::relations(match);
  QAccessibleInterface* label = match & QAccessible::Label ? FindLabel(*widget()) : nullptr;
  if (label != nullptr) all.append({label, QAccessible::Label});
  return all;
}

QAccessible::State CPartFace::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.focused = CountsAsFocused(*widget());
  state.focusable |= state.focused;
  return state;
}
