#pragma once

#include <QEvent>

/// Whether an event comes from the user's hands: keys, pointers, touch, input methods, things dragged.
bool IsInput(QEvent::Type type);
