#pragma once

class QWidget;

/// Lets a press outside a popup, which closes it, also do what it does where it falls, whatever the desktop's
/// habit. Only on `opener`, which would open the popup again, it does nothing more.
void PassOnOutsideClicks(QWidget& popup, QWidget& opener);
