#pragma once

#include <QAccessible>
#include <functional>

#include "ui/kit/Job.h"

class QWidget;

/// A widget that tells assistive tools itself what it is derives publicly from this, too. A face is what Qt
/// calls an accessible interface. It may be asked at any time, also between the destructors of its widget: it
/// finds the widget by a dynamic cast of object() each time, and tells nothing once that fails. Window
/// thread.
class CFaceMaker {
 public:
  CFaceMaker();
  virtual ~CFaceMaker() = default;
  CFaceMaker(const CFaceMaker&) = delete;
  CFaceMaker& operator=(const CFaceMaker&) = delete;

  /// Qt asks once, when a tool first looks at the widget, and deletes the face with the widget.
  virtual QAccessibleInterface* MakeFace() = 0;
};

/// A window that keeps the focus itself while its keys act on one of its parts.
class CFocusHolder {
 public:
  virtual ~CFocusHolder() = default;
  /// The part to which tools are led when the window has the focus; null for the window itself.
  virtual QWidget* GetFocusedPart() const = 0;
};

/// Whether the widget has the focus in the eyes of a tool: it has it itself, not by a proxy, or its window
/// has it and the widget is the part that the keys act on.
bool CountsAsFocused(const QWidget& widget);

/// Tells tools where the focus is, from the event loop. Qt does so when a widget takes the focus; this is for
/// a focus that comes back from a list, or belongs to a part of a window.
void TellFocus();

void TellTools(QAccessibleInterface& face, QAccessible::Event what);
/// Nothing while no tool listens.
void TellTools(QWidget& widget, QAccessible::Event what);

/// What the catalog told last. While a job has the catalog it isn't asked again, and before the first answer
/// there is an empty one.
template <typename Answer>
class CLastAnswer {
 public:
  const Answer& Ask(const std::function<Answer()>& ask) {
    if (!IsJobRunning()) Last = ask();
    return Last;
  }

 private:
  Answer Last{};
};

/// Does what an assistive tool asked for, as if the user had clicked there: from the event loop, when no job
/// runs. Not at all if the widget is gone, disabled or out of view by then, or a dialog is open above it.
void DoAsClicked(QWidget& widget, std::function<void()> work);
