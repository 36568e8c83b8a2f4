#pragma once

#include <Qt>

class QFocusEvent;
class QWidget;

/// Lets a click on the widget leave the focus where it is. A click on a widget without a focus of its own
/// otherwise gives it to the window behind, which would end the edit of a field; opening a list or a menu
/// must not.
void KeepFocusOnClick(QWidget& widget);

/// Gives the focus to a widget, also to one that KeepFocusOnClick was called for.
void GiveFocus(QWidget& widget, Qt::FocusReason reason);

/// Whether the focus is lost to a list or a menu of this program. It comes back, so an edit goes on.
bool IsLostToPopup(const QFocusEvent& event);

/// Lets a press outside a popup, which closes it, also do what it does where it falls, whatever the desktop's
/// habit. Only on `opener`, which would open the popup again, it does nothing more.
void PassOnOutsideClicks(QWidget& popup, QWidget& opener);
