#pragma once

#include <QAccessible>
#include <functional>

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

/// Does what an assistive tool asked for, as if the user had clicked there: from the event loop, when no job
/// runs. Not at all if the widget is gone, disabled or out of view by then, or a dialog is open above it.
void DoAsClicked(QWidget& widget, std::function<void()> work);
