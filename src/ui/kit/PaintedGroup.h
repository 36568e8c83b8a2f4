#pragma once

#include <QAccessibleWidget>
#include <QRect>
#include <QString>
#include <map>
#include <vector>

#include "ui/kit/AssistiveTools.h"

/// One part of a group: a widget, or a text that the group paints.
struct GroupPart {
  const QWidget* Widget = nullptr;  // null for a text
  QString Text{};
  QRect Place{};                   // of a text, in the group's widget
  const QWidget* Names = nullptr;  // the widget whose label the text is
};

/// Tells assistive tools what a widget consists of: some of its child widgets, at any depth, and texts that
/// it paints itself, in the order in which they are read. What isn't named is decoration. The widget derives
/// from this as well as from QWidget.
class CPaintedGroup : public CFaceMaker {
 public:
  virtual QAccessible::Role GetGroupRole() const { return QAccessible::Grouping; }

  /// May be called at any time, also while a job runs.
  virtual std::vector<GroupPart> ListParts() const = 0;

  QAccessibleInterface* MakeFace() override;
};

/// The face of a widget that may be part of a group: its parent is the group, and it is labelled by the
/// group's text that names it.
class CPartFace : public QAccessibleWidget {
 public:
  using QAccessibleWidget::QAccessibleWidget;
  QAccessibleInterface* parent() const override;
  QList<QPair<QAccessibleInterface*, QAccessible::Relation>> relations(
      QAccessible::Relation match) const override;
  QAccessible::State state() const override;
};

/// The same of a widget whose child widgets a tool isn't told of.
class CLeafFace : public CPartFace {
 public:
  using CPartFace::CPartFace;
  int childCount() const override { return 0; }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
};

/// The face of a group. It owns the faces of the group's texts.
class CGroupFace : public CPartFace {
 public:
  explicit CGroupFace(QWidget& group) : CPartFace(&group) {}
  ~CGroupFace() override;

  QAccessible::Role role() const override;
  /// A main window is busy while a job runs.
  QAccessible::State state() const override;
  int childCount() const override;
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QAccessibleInterface* childAt(int x, int y) const override;

 private:
  QAccessibleInterface* GetText(int index) const;

  mutable std::map<int, QAccessible::Id> Texts;  // by position; of those that a tool has asked for
};
