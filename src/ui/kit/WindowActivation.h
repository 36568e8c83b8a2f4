#pragma once

#include <string>

class QWidget;

/// Brings a window to the front. The desktop lets it come there only for an action of the user; `token`
/// stands for one in another program, as a desktop gives it to what it starts, and may be empty. The desktop
/// is told that this start is over. Window thread.
void ActivateWindow(QWidget& window, const std::string& token);
